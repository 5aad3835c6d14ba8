#include "kit/Precompiled.h"
