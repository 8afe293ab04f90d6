// The service interfaces that GetService hands out.
#pragma once

#include "IInternalService_General.h"
