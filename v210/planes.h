#pragma once

#include "core/planes.h"
