/* header_c.c: the public header, alone, in a C99 program. */
#include "vel_stopngo.h"

int vel_stopngo_header_in_c(void);
int vel_stopngo_header_in_c(void) { return vel_stopngo.maxctrl - (int)VEL_CTRL_STOPNGO_MAX; }
