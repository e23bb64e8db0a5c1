/* Prints the library's version record and thread count. */
#include <stdio.h>

#include "vprcore.h"
#include "vprjp.h"

int main(void) {
  const VprLibraryVersion* v = vprjGetLibVersion();
  printf("%s, version %s, built %s\n", v->libraryName, v->versionText, v->buildDateText);
  printf("version %d.%d.%d revision %d, cpu tag \"%s\"\n", v->versionMajor, v->versionMinor,
         v->versionUpdate, v->revision, v->cpuTag);
  printf("threads for whole-image calls: %d\n", vprGetNumThreads());
  return 0;
}
