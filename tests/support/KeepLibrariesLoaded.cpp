// For builds with AddressSanitizer: keeps libraries loaded until the process exits. A leak report then contains the
// name of the library, and tests/lsan.supp can suppress it.

#include <dlfcn.h>

extern "C" int dlclose(void * /*library*/)
{
    return 0;
}
