#pragma once

// What most tests need: the framework, and the means that they share.

#include "support/NqPrintCapture.h"
#include "support/NqTestFiles.h"
#include "support/NqTestModels.h"
#include "support/NqXmlRoundTrip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// Names a case of a parametrised test.
inline constexpr auto nqCaseName = [](const auto& which) { return std::string(which.param.name); };
