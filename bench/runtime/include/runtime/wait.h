#pragma once

#include "base/wait.h"
