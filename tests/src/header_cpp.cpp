// header_cpp.cpp: the public header, alone, in a C++17 program.
#include "vel_stopngo.h"

int HeaderInCpp();
int HeaderInCpp() { return vel_stopngo.maxctrl - static_cast<int>(VEL_CTRL_STOPNGO_MAX); }
