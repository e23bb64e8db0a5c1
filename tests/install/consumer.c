/* A C99 program built against the installed package. */
#include <stdio.h>
#include <string.h>

#include <vprcore.h>
#include <vprjp.h>

int main(void) {
  const VprLibraryVersion* v = vprjGetLibVersion();
  VprRoiSize roi = {1, 1};
  (void)roi;
  if (!v || v->versionMajor != 7 || strcmp(v->versionText, "7.1.1 (r37466)") != 0) return 1;
  if (vprSetNumThreads(2) != 2) return 2;
  printf("%s %s %s\n", v->libraryName, v->versionText, v->buildDateText);
  return 0;
}
