#pragma once

// What most tests include, compiled once for all of them.

#include "cmake/StandardHeaders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <regex>
#include <set>
#include <sstream>
