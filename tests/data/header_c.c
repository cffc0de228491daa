#include "platform/ModemService.h"
