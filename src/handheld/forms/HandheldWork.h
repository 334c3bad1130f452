#pragma once

#include <functional>

/// Does something with a handheld. False when it could not be done: the operator has been told why.
bool DoOnHandheld(const std::function<void()>& deed);
