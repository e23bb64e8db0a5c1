// The MQ arithmetic coder of JPEG 2000 (ISO/IEC 15444-1, Annex C).
//
// Internal module: nothing here leaves the shared library; the code-block
// coders and the tests reach it through the static archive.
//
// Encoder.  Decisions are first recorded (context number, decision) into two
// arrays the caller provides; the arithmetic coding runs while the caller
// pulls bytes out with decEncoderMQEncode / decEncoderMQTerminate into
// buffers of any size, one byte at a time included.  A rate-limited caller
// can therefore stop at any byte.
//
//   MqEncoder enc;
//   mq_encoder_init(&enc, kMqTermDefault, decisions, contexts, capacity);
//   mq_encoder_record(&enc, cx, d);  ...     // any number of times
//   int32_t left, rc;
//   do { len = room; left = decEncoderMQEncode(&enc, out, &len); take(out, len); }
//   while (left > 0);                        // (may stop here: rate limit)
//   do { len = room; rc = decEncoderMQTerminate(&enc, out, &len); take(out, len); }
//   while (rc != 0);
//
// Recording may also go on between drains; the code-word of a finished
// termination is followed by a new one with mq_encoder_restart (contexts
// kept), as a coder terminating every coding pass needs.
//
// Memory: the coders never allocate.  The recorded-symbol arrays belong to
// the caller (one byte per decision in each array; the capacity is fixed at
// initialisation and mq_encoder_record refuses a decision beyond it).  The
// staging buffer of produced but undelivered bytes is a fixed array inside
// MqEncoder: coding stops as soon as the caller's room is full, so at most
// two bytes of one decision plus the termination bytes are ever staged.
//
// Decoder.  mq_decoder_init on a byte range, then mq_decode (or the raw step
// ownpj_DecoderDecode_asm) once per decision.  The decoder reads only the
// bytes of its range: past the end, and from a marker (0xFF followed by a
// byte above 0x8F) on, it feeds 1-bits, as the standard requires.  It never
// fails; callers check lengths.
#pragma once

#include <cstdint>

namespace vpr::j2k {

// ------------------------------------------------------------------ tables
// One row of the probability estimation table (ISO/IEC 15444-1 Table C.2).
struct MqEstimatorRow {
  uint32_t qe;      // LPS probability estimate
  uint32_t nmps;    // next state after an MPS renormalisation
  uint32_t nlps;    // next state after an LPS
  uint32_t swtch;   // 1: an LPS exchanges the sense of the MPS
};

inline constexpr int kMqStates = 47;
inline constexpr int kMqContexts = 19;

extern const MqEstimatorRow owniEstimator_JPEG2K[kMqStates];
// Initial state index and MPS of the 19 contexts: context 0 is the uniform
// context (state 46), 1 the run-length context (state 3), 2 the first
// zero-coding context (state 4), 3..18 start in state 0; every MPS is 0.
extern const uint8_t owniInitialCtxIndexes_JPEG2K[kMqContexts];
extern const uint8_t owniInitialMPS_JPEG2K[kMqContexts];

// A context: state index I(CX) (0..46) and more probable symbol MPS(CX).
struct MqContext {
  uint8_t index;
  uint8_t mps;
};

// Sets the 19 contexts to their initial states.
void mq_reset_contexts(MqContext* ctx);

// ------------------------------------------------------------------ encoder
// Termination modes.
enum MqTermination : uint32_t {
  // The default flush (FLUSH of ISO/IEC 15444-1 C.2.9; the tail of the
  // code-word is filled with ones).
  kMqTermDefault = 0,
  // The shortest stream the decoder recovers every decision from, feeding
  // 1-bits after its end (never longer than kMqTermDefault).
  kMqTermShortest = 1,
  // Predictable termination (ERTERM, ISO/IEC 15444-1 D.4.2).
  kMqTermPredictable = 2,
};

inline constexpr int kMqStagingBytes = 16;

struct MqEncoder {
  // Registers (ENCODE / BYTEOUT of ISO/IEC 15444-1 C.2).
  uint32_t A;   // interval width
  uint32_t C;   // code register, bit 27 is the carry
  uint32_t CT;  // shifts left before the next byte is formed
  uint32_t B;   // the pending byte (a byte: always 0..0xFF)
  // Staging buffer: stage[delivered..produced) are formed but undelivered.
  uint32_t produced;
  uint32_t delivered;
  uint32_t skip_first;       // 1 until the dummy first byte was dropped
  uint32_t total_delivered;  // bytes handed to the caller since init/restart
  uint32_t mode;             // MqTermination
  uint32_t term_pending;     // 1 until the termination was performed
  // Recorded symbols (caller's arrays).
  uint8_t* decisions;
  uint8_t* contexts;
  int32_t capacity;
  int32_t count;  // recorded
  int32_t next;   // next to code
  MqContext ctx[kMqContexts];
  uint8_t stage[kMqStagingBytes];
};

// INITENC: A = 0x8000, C = 0, CT = 12, the dummy byte (0) pending; contexts
// at their initial states; no symbols recorded.  `mode` is a MqTermination
// (values above 2 are taken as 0).  The arrays hold `capacity` decisions
// each and must outlive the encoder's use.
void mq_encoder_init(MqEncoder* e, uint32_t mode, uint8_t* decisions, uint8_t* contexts,
                     int32_t capacity);

// Starts a new code-word after a completed termination (decEncoderMQTerminate
// returned 0): INITENC of the registers with a new termination mode, a new
// dummy byte; the contexts, the recorded symbols and the position in them
// are kept (the next recorded decision begins the new code-word), and the
// delivered total restarts at 0.
void mq_encoder_restart(MqEncoder* e, uint32_t mode);

// Records decision d (0 or 1; any nonzero value counts as 1) in context cx,
// which must be 0..18 (not checked).  Returns false, recording nothing, when
// the arrays are full.
inline bool mq_encoder_record(MqEncoder* e, int cx, int d) {
  if (e->count >= e->capacity) return false;
  e->decisions[e->count] = static_cast<uint8_t>(d != 0);
  e->contexts[e->count] = static_cast<uint8_t>(cx);
  ++e->count;
  return true;
}

// Drains bytes into pDst.  On entry *pLen is the room in pDst (a room below
// 1 writes nothing, codes nothing and sets *pLen to 0).
// Staged bytes go first (the dummy first byte is dropped, never delivered);
// then recorded symbols are coded one after another, their bytes delivered
// as they are formed, until the symbols run out or the room is full (bytes
// formed beyond the room stay staged for the next call).  On return *pLen is
// the number of bytes written.  Returns the number of recorded symbols still
// to be coded (0: every recorded symbol is coded; its bytes may still be
// partly staged, and the last ones are formed by the termination).
int32_t decEncoderMQEncode(MqEncoder* e, uint8_t* pDst, int32_t* pLen);

// Finishes the code-word.  On entry *pLen is the room in pDst.
//   - *pLen == 0 (or below) on entry: returns 1 at once and does nothing.
//   - Otherwise delivers staged bytes, codes any recorded symbols still
//     uncoded (as decEncoderMQEncode does), then, once every symbol is coded,
//     performs the termination of the selected mode (once) and delivers its
//     bytes.  *pLen is set to the bytes written.
// Returns 0 when the termination is done and every byte of the code-word is
// delivered (later calls write nothing and return 0); returns 1 when the
// room ran out first: symbols, the termination or staged bytes remain, and
// the caller calls again with more room.  Once it returned 0 the code-word
// is closed: record more only after mq_encoder_restart.
int32_t decEncoderMQTerminate(MqEncoder* e, uint8_t* pDst, int32_t* pLen);

// ------------------------------------------------------------------ decoder
struct MqDecoder {
  const uint8_t* data;  // code bytes
  int32_t len;          // their number
  int32_t pos;          // index of the byte most recently entered into C
  uint32_t A;           // interval width (16 bits)
  // Code register, complemented: C = (A << 16) - 1 - Cstd, where Cstd is the
  // standard register with its not yet entered bits taken as ones.  Its
  // high half is compared with A directly, the MPS sub-interval leaves it
  // unchanged, and a byte b enters as 0xFF - b (so feeding 1-bits after the
  // end or after a marker is a plain shift).
  uint32_t C;
  uint32_t CT;      // shifts left before the next byte enters
  uint32_t marker;  // 1: the end of the data or a marker was met
  MqContext ctx[kMqContexts];
};

// INITDEC on data[0..len): contexts at their initial states.  len may be 0
// (data is then not read; it may be null).
void mq_decoder_init(MqDecoder* d, const uint8_t* data, int32_t len);
// INITDEC on a new code-word, keeping the contexts.
void mq_decoder_restart(MqDecoder* d, const uint8_t* data, int32_t len);

// BYTEIN on the complemented register, with b the byte most recently
// entered and b1 the next one: 0xFF then b1 > 0x8F is a marker (nothing is
// consumed); 0xFF then b1 <= 0x8F enters b1's seven bits (CT = 7); any
// other b enters b1 (CT = 8).  No b1 (the end of the data) counts as a
// marker.  From a marker on, only 1-bits are fed: the complement gains
// nothing.
inline void ownpj_DecoderByteIn(MqDecoder* d) {
  d->CT = 8;
  if (d->marker) return;
  const int32_t pos = d->pos;
  if (pos + 1 >= d->len) {
    d->marker = 1;
    return;
  }
  const uint32_t b1 = d->data[pos + 1];
  if (d->data[pos] == 0xFF) {
    if (b1 > 0x8F) {
      d->marker = 1;
      return;
    }
    d->pos = pos + 1;
    d->C += 0xFE00u - (b1 << 9);
    d->CT = 7;
  } else {
    d->pos = pos + 1;
    d->C += 0xFF00u - (b1 << 8);
  }
}

// One DECODE (ISO/IEC 15444-1 C.3.2) in context cx: returns the decision
// (0 or 1) and updates the context, with renormalisation and byte input.
//
// The sub-interval, the conditional exchange and the state update are
// computed without branches (the MPS/LPS outcome is what a predictor cannot
// guess); only byte input branches.  On the MPS side without an exchange
// (A - Qe keeps 0x8000) A is the only thing that changes: the shift count
// is 0 and the state index is stored back unchanged.
inline int ownpj_DecoderDecode_asm(MqDecoder* d, MqContext* cx) {
  const uint32_t index = cx->index;
  const uint32_t mps = cx->mps;
  const MqEstimatorRow& row = owniEstimator_JPEG2K[index];
  const uint32_t qe = row.qe;
  uint32_t a = d->A - qe;
  uint32_t c = d->C;
  // The LPS sub-interval is the lower one: Cstd_high < Qe, i.e. the
  // complemented high half reaches the MPS part A - Qe.
  const uint32_t lps_side = (c >> 16) >= a;
  // The conditional exchange: the smaller sub-interval belongs to the LPS.
  const uint32_t exchange = a < qe;
  const uint32_t bit = mps ^ lps_side ^ exchange;
  c -= lps_side ? (a << 16) : 0u;  // the complement drops the MPS part
  a = lps_side ? qe : a;
  const uint32_t lps = bit ^ mps;
  const uint32_t next = lps ? row.nlps : row.nmps;
  cx->index = static_cast<uint8_t>(a < 0x8000u ? next : index);
  cx->mps = static_cast<uint8_t>(mps ^ (lps & row.swtch));
  // RENORMD: n shifts (0 when A kept 0x8000), a byte entering whenever CT
  // runs out.
  uint32_t n = static_cast<uint32_t>(__builtin_clz(a | 1u)) - 16u;
  uint32_t ct = d->CT;
  if (__builtin_expect(n > ct, 0)) {
    do {
      a <<= ct;
      c <<= ct;
      n -= ct;
      d->C = c;
      d->CT = 0;
      ownpj_DecoderByteIn(d);
      c = d->C;
      ct = d->CT;
    } while (n > ct);
  }
  d->A = a << n;
  d->C = c << n;
  d->CT = ct - n;
  return static_cast<int>(bit);
}

inline int mq_decode(MqDecoder* d, int cx) { return ownpj_DecoderDecode_asm(d, &d->ctx[cx]); }

namespace ref {
// The decoder exactly as ISO/IEC 15444-1 C.3 writes it (INITDEC, DECODE with
// MPS_EXCHANGE / LPS_EXCHANGE, RENORMD, BYTEIN with the uncomplemented
// register), the twin the complemented decoder is checked against.  Bytes
// past the end of the range read as 0xFF.
struct MqDecoderStd {
  const uint8_t* data;
  int32_t len;
  int32_t bp;
  uint32_t A, C, CT;
  MqContext ctx[kMqContexts];
};
void mq_std_init(MqDecoderStd* d, const uint8_t* data, int32_t len);
int mq_std_decode(MqDecoderStd* d, int cx);
}  // namespace ref

}  // namespace vpr::j2k
