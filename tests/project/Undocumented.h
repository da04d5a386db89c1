#pragma once

/// @file
/// The test of the documentation has to find that one name here has none.

/// A class with documentation.
class Documented {
  public:
    void hasNone();
};
