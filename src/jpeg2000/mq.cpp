// MQ arithmetic coder: tables, the recording encoder with incremental
// draining and its three terminations, decoder initialisation, and the
// decoder exactly as ISO/IEC 15444-1 C.3 writes it (the twin of the
// complemented one in mq.h).
#include "jpeg2000/mq.h"

#include <cstring>

namespace vpr::j2k {

// ISO/IEC 15444-1 Table C.2: {Qe, NMPS, NLPS, SWITCH}.
const MqEstimatorRow owniEstimator_JPEG2K[kMqStates] = {
    {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},
    {0x0521, 5, 29, 0},  {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},
    {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0}, {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0},
    {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1}, {0x5401, 16, 14, 0},
    {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
    {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0},
    {0x1C01, 25, 22, 0}, {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0},
    {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0}, {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0},
    {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0}, {0x02A1, 36, 33, 0},
    {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
    {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0},
    {0x0005, 45, 42, 0}, {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0},
};

const uint8_t owniInitialCtxIndexes_JPEG2K[kMqContexts] = {46, 3, 4, 0, 0, 0, 0, 0, 0, 0,
                                                           0,  0, 0, 0, 0, 0, 0, 0, 0};
const uint8_t owniInitialMPS_JPEG2K[kMqContexts] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                    0, 0, 0, 0, 0, 0, 0, 0, 0};

void mq_reset_contexts(MqContext* ctx) {
  for (int i = 0; i < kMqContexts; ++i) {
    ctx[i].index = owniInitialCtxIndexes_JPEG2K[i];
    ctx[i].mps = owniInitialMPS_JPEG2K[i];
  }
}

// ======================================================================
// Encoder
// ======================================================================
namespace {

constexpr uint32_t kStageMask = kMqStagingBytes - 1;
static_assert((kMqStagingBytes & kStageMask) == 0, "staging size is a power of two");

// The registers with an output cursor: the coding loop keeps them in
// locals, the termination search runs on copies.
struct Regs {
  uint32_t A, C, CT, B;
  uint8_t* out;     // staging ring (or a scratch array)
  uint32_t mask;    // index mask of `out`
  uint32_t n;       // bytes written to out (free-running)
};

// BYTEOUT: stages the pending byte B, then forms the next one from C.
inline void byteout(Regs& r) {
  if (r.B == 0xFF) {
    r.out[r.n++ & r.mask] = 0xFF;
    r.B = r.C >> 20;  // a stuffed byte: seven bits
    r.C &= 0xFFFFF;
    r.CT = 7;
  } else if (r.C < 0x8000000u) {
    r.out[r.n++ & r.mask] = static_cast<uint8_t>(r.B);
    r.B = r.C >> 19;
    r.C &= 0x7FFFF;
    r.CT = 8;
  } else {
    // Carry into the pending byte (never a 0xFF: after one only seven bits
    // are taken).
    ++r.B;
    if (r.B == 0xFF) {
      r.C &= 0x7FFFFFF;
      r.out[r.n++ & r.mask] = 0xFF;
      r.B = r.C >> 20;
      r.C &= 0xFFFFF;
      r.CT = 7;
    } else {
      r.out[r.n++ & r.mask] = static_cast<uint8_t>(r.B);
      // C still holds the carry in bit 27: B keeps only its byte.
      r.B = (r.C >> 19) & 0xFF;
      r.C &= 0x7FFFF;
      r.CT = 8;
    }
  }
}

// ENCODE of decision d in context cx (CODEMPS / CODELPS), with RENORME.
// Both paths reduce to one rule without branches: with the conditional
// exchange "A - Qe < Qe", C gains Qe and A keeps A - Qe exactly when the
// decision is the MPS without an exchange or the LPS with one; otherwise
// A becomes Qe and C stays.  The state moves only when A needs
// renormalisation (always after an LPS).
inline void encode(Regs& r, MqContext& cx, uint32_t d) {
  const uint32_t index = cx.index;
  const uint32_t mps = cx.mps;
  const MqEstimatorRow& row = owniEstimator_JPEG2K[index];
  const uint32_t qe = row.qe;
  uint32_t a = r.A - qe;
  const uint32_t lps = d ^ mps;
  const uint32_t keep = lps ^ (a >= qe);  // 1: C += Qe, A = A - Qe
  r.C += keep ? qe : 0u;
  a = keep ? a : qe;
  const uint32_t next = lps ? row.nlps : row.nmps;
  cx.index = static_cast<uint8_t>(a < 0x8000u ? next : index);
  cx.mps = static_cast<uint8_t>(mps ^ (lps & row.swtch));
  // RENORME: n shifts; a BYTEOUT whenever CT reaches 0.
  uint32_t n = static_cast<uint32_t>(__builtin_clz(a | 1u)) - 16u;
  if (__builtin_expect(n >= r.CT, 0)) {
    do {
      a <<= r.CT;
      r.C <<= r.CT;
      n -= r.CT;
      byteout(r);
    } while (n >= r.CT);
  }
  r.A = a << n;
  r.C <<= n;
  r.CT -= n;
}

inline Regs load(MqEncoder* e) {
  return Regs{e->A, e->C, e->CT, e->B, e->stage, kStageMask, e->produced};
}
inline void store(MqEncoder* e, const Regs& r) {
  e->A = r.A;
  e->C = r.C;
  e->CT = r.CT;
  e->B = r.B;
  e->produced = r.n;
}

// Hands staged bytes to the caller, dropping the dummy first byte once.
inline void deliver(MqEncoder* e, uint8_t* dst, int32_t room, int32_t& w) {
  while (e->delivered != e->produced && w < room) {
    const uint8_t b = e->stage[e->delivered++ & kStageMask];
    if (e->skip_first) {
      e->skip_first = 0;
      continue;
    }
    dst[w++] = b;
  }
}

// Codes recorded symbols until they run out or the room is full (w < room
// on entry).  The delivery cursor lives in locals: bytes are formed about
// once per eight coded bits, so the loop mostly codes.
void code_symbols(MqEncoder* e, uint8_t* dst, int32_t room, int32_t& w_io) {
  Regs r = load(e);
  int32_t w = w_io;
  int32_t next = e->next;
  uint32_t delivered = e->delivered;
  uint32_t skip = e->skip_first;
  const int32_t count = e->count;
  const uint8_t* const dec = e->decisions;
  const uint8_t* const cxs = e->contexts;
  MqContext* const ctx = e->ctx;
  const uint8_t* const stage = e->stage;
  while (next < count) {
    encode(r, ctx[cxs[next]], dec[next]);
    ++next;
    if (r.n != delivered) {
      do {
        const uint8_t b = stage[delivered++ & kStageMask];
        if (skip)
          skip = 0;
        else
          dst[w++] = b;
      } while (delivered != r.n && w < room);
      if (w >= room) break;
    }
  }
  e->next = next;
  e->delivered = delivered;
  e->skip_first = skip;
  store(e, r);
  w_io = w;
}

// Termination mode 0: SETBITS, then the code-word's tail filled with ones.
void flush_default(Regs& r) {
  const uint32_t tempc = r.C + r.A;
  r.C |= 0xFFFF;
  if (r.C >= tempc) r.C -= 0x8000;
  r.C <<= r.CT;
  byteout(r);
  r.C = (r.C | 0x7FFF) << r.CT;
  byteout(r);
  r.C |= 0x7FFF;
  if (r.B != 0xFF) {
    r.C <<= r.CT;
    byteout(r);
  }
}

// Termination mode 2: ERTERM.
void flush_predictable(Regs& r) {
  int32_t k = 12 - static_cast<int32_t>(r.CT);
  while (k > 0) {
    r.C <<= r.CT;
    byteout(r);
    k -= static_cast<int32_t>(r.CT);
  }
  if (r.B != 0xFF) {
    r.C <<= r.CT;
    byteout(r);
  }
}

// Number of bytes of buf[0..n) left once trailing bytes that only carry
// 1-bits are dropped (0xFF, and 0x7F after a 0xFF: seven 1-bits), which
// the decoder supplies itself after the end.  prev_ff: the byte before
// buf[0] was 0xFF.
uint32_t strip_ones(const uint8_t* buf, uint32_t n, bool prev_ff) {
  while (n > 0) {
    const uint8_t last = buf[n - 1];
    const bool before_ff = n >= 2 ? buf[n - 2] == 0xFF : prev_ff;
    if (last == 0xFF || (last == 0x7F && before_ff))
      --n;
    else
      break;
  }
  return n;
}

constexpr uint32_t kScratch = 8;

// Emits the code-word value x (in C's units; the decoder continues it with
// 1-bits) into scratch: five BYTEOUTs push every bit of x and the pending
// byte out, with ones shifted in below x.  Returns the bytes needed.
uint32_t emit_value(Regs r, uint32_t x, uint8_t* scratch, bool prev_ff) {
  r.out = scratch;
  r.mask = 0xFFFFFFFFu;
  r.n = 0;
  r.C = x;
  for (int i = 0; i < 5; ++i) {
    r.C = (r.C << r.CT) | ((1u << r.CT) - 1u);
    byteout(r);
  }
  return strip_ones(scratch, r.n, prev_ff);
}

// Termination mode 1.  Any value x of the final interval [C, C + A),
// written out and continued with 1-bits, decodes every decision; the fewer
// bits above x's trailing run of ones, the fewer bytes.  The candidates are
// the values x = m * 2^k - 1 of the interval for the three largest k that
// have one (the largest has a single m; two m per level, as a 0xFF among
// the bytes costs a bit of stuffing) and the default flush; the one giving
// the fewest bytes wins (ties: the default flush).  At most seven trial
// emissions of five BYTEOUTs each.
void flush_shortest(Regs& r, bool prev_ff) {
  uint8_t best[kScratch];
  uint32_t best_n;
  {
    Regs d = r;
    d.out = best;
    d.mask = 0xFFFFFFFFu;
    d.n = 0;
    flush_default(d);
    best_n = strip_ones(best, d.n, prev_ff);
  }
  const uint64_t lo = r.C;
  const uint64_t hi = static_cast<uint64_t>(r.C) + r.A;  // exclusive
  int levels = 0;
  for (int k = 28; k >= 0 && levels < 3; --k) {
    // Values x = m * 2^k - 1 with lo <= x < hi, from the largest m down.
    uint64_t t = (hi >> k) << k;
    if (t <= lo) continue;
    ++levels;
    for (int j = 0; j < 2 && t > lo; ++j, t -= (uint64_t{1} << k)) {
      uint8_t cand[kScratch];
      const uint32_t n = emit_value(r, static_cast<uint32_t>(t - 1), cand, prev_ff);
      if (n < best_n) {
        best_n = n;
        std::memcpy(best, cand, n);
      }
    }
  }
  for (uint32_t i = 0; i < best_n; ++i) r.out[r.n++ & r.mask] = best[i];
}

void terminate(MqEncoder* e) {
  Regs r = load(e);
  switch (e->mode) {
    case kMqTermShortest: {
      const bool prev_ff = r.n > 0 && e->stage[(r.n - 1) & kStageMask] == 0xFF;
      flush_shortest(r, prev_ff);
      break;
    }
    case kMqTermPredictable: flush_predictable(r); break;
    default: flush_default(r); break;
  }
  store(e, r);
  e->term_pending = 0;
}

void init_registers(MqEncoder* e, uint32_t mode) {
  e->A = 0x8000;
  e->C = 0;
  e->CT = 12;
  e->B = 0;  // the dummy byte in front of the stream
  e->skip_first = 1;
  e->total_delivered = 0;
  e->mode = mode <= 2 ? mode : 0;
  e->term_pending = 1;
}

}  // namespace

void mq_encoder_init(MqEncoder* e, uint32_t mode, uint8_t* decisions, uint8_t* contexts,
                     int32_t capacity) {
  init_registers(e, mode);
  e->produced = 0;
  e->delivered = 0;
  e->decisions = decisions;
  e->contexts = contexts;
  e->capacity = capacity > 0 ? capacity : 0;
  e->count = 0;
  e->next = 0;
  mq_reset_contexts(e->ctx);
  std::memset(e->stage, 0, sizeof e->stage);
}

void mq_encoder_restart(MqEncoder* e, uint32_t mode) { init_registers(e, mode); }

int32_t decEncoderMQEncode(MqEncoder* e, uint8_t* pDst, int32_t* pLen) {
  const int32_t room = *pLen;
  int32_t w = 0;
  deliver(e, pDst, room, w);
  if (w < room) code_symbols(e, pDst, room, w);
  *pLen = w;
  e->total_delivered += static_cast<uint32_t>(w);
  return e->count - e->next;
}

int32_t decEncoderMQTerminate(MqEncoder* e, uint8_t* pDst, int32_t* pLen) {
  const int32_t room = *pLen;
  if (room <= 0) return 1;
  int32_t w = 0;
  deliver(e, pDst, room, w);
  if (w < room) code_symbols(e, pDst, room, w);
  if (e->next < e->count) {
    *pLen = w;
    e->total_delivered += static_cast<uint32_t>(w);
    return 1;
  }
  if (e->term_pending) terminate(e);
  deliver(e, pDst, room, w);
  *pLen = w;
  e->total_delivered += static_cast<uint32_t>(w);
  return e->produced != e->delivered ? 1 : 0;
}

// ======================================================================
// Decoder
// ======================================================================

void mq_decoder_restart(MqDecoder* d, const uint8_t* data, int32_t len) {
  d->data = data;
  d->len = len > 0 ? len : 0;
  d->pos = 0;
  d->marker = 0;
  if (d->len == 0) {
    d->marker = 1;  // nothing to read: the code-word is all 1-bits
    d->C = 0;
  } else {
    d->C = (0xFFu - data[0]) << 16;
  }
  ownpj_DecoderByteIn(d);
  d->C <<= 7;
  d->CT -= 7;
  d->A = 0x8000;
}

void mq_decoder_init(MqDecoder* d, const uint8_t* data, int32_t len) {
  mq_reset_contexts(d->ctx);
  mq_decoder_restart(d, data, len);
}

// ======================================================================
// The decoder as the standard writes it
// ======================================================================
namespace ref {
namespace {
uint32_t byte_at(const MqDecoderStd* d, int32_t i) { return i < d->len ? d->data[i] : 0xFFu; }

void bytein(MqDecoderStd* d) {
  if (byte_at(d, d->bp) == 0xFF) {
    if (byte_at(d, d->bp + 1) > 0x8F) {
      d->C += 0xFF00;
      d->CT = 8;
    } else {
      ++d->bp;
      d->C += byte_at(d, d->bp) << 9;
      d->CT = 7;
    }
  } else {
    ++d->bp;
    d->C += byte_at(d, d->bp) << 8;
    d->CT = 8;
  }
}

void renormd(MqDecoderStd* d) {
  do {
    if (d->CT == 0) bytein(d);
    d->A <<= 1;
    d->C <<= 1;
    --d->CT;
  } while ((d->A & 0x8000) == 0);
}
}  // namespace

void mq_std_init(MqDecoderStd* d, const uint8_t* data, int32_t len) {
  mq_reset_contexts(d->ctx);
  d->data = data;
  d->len = len;
  d->bp = 0;
  d->C = byte_at(d, 0) << 16;
  bytein(d);
  d->C <<= 7;
  d->CT -= 7;
  d->A = 0x8000;
}

int mq_std_decode(MqDecoderStd* d, int cxn) {
  MqContext& cx = d->ctx[cxn];
  const MqEstimatorRow& row = owniEstimator_JPEG2K[cx.index];
  const uint32_t qe = row.qe;
  int bit;
  d->A -= qe;
  if ((d->C >> 16) < qe) {
    // LPS_EXCHANGE
    if (d->A < qe) {
      d->A = qe;
      bit = cx.mps;
      cx.index = static_cast<uint8_t>(row.nmps);
    } else {
      d->A = qe;
      bit = 1 - cx.mps;
      if (row.swtch) cx.mps = static_cast<uint8_t>(1 - cx.mps);
      cx.index = static_cast<uint8_t>(row.nlps);
    }
    renormd(d);
  } else {
    d->C -= qe << 16;
    if ((d->A & 0x8000) == 0) {
      // MPS_EXCHANGE
      if (d->A < qe) {
        bit = 1 - cx.mps;
        if (row.swtch) cx.mps = static_cast<uint8_t>(1 - cx.mps);
        cx.index = static_cast<uint8_t>(row.nlps);
      } else {
        bit = cx.mps;
        cx.index = static_cast<uint8_t>(row.nmps);
      }
      renormd(d);
    } else {
      bit = cx.mps;
    }
  }
  return bit;
}
}  // namespace ref

}  // namespace vpr::j2k
