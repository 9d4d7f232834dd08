// The record behind tavchGetLibVersion.
#pragma once

#include "tavch.h"

namespace tav {

const tavVersionRecord* getLibVersion();

} // namespace tav
