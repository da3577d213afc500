// The title of the messages to the operator, kMessageTitle.
#pragma once

#include "platform/operator.h"
