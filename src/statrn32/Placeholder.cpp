#include "host/statrn32.h"
