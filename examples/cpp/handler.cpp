// The strong definition wins over the weak one in main.cpp, wherever it stands on the command line.
#include "semihost.h"

extern "C" void on_event() { print("strong handler\n"); }
