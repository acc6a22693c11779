#include <tests/support/TestSupport.h>
