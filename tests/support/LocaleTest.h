#pragma once

#include <clocale>
#include <locale>
#include <string>

#include <gtest/gtest.h>

/// Puts both locales of the process back at the end of a test.
class LocaleTest : public ::testing::Test {
  protected:
    void TearDown() override {
        std::locale::global(cppLocale_);
        std::setlocale(LC_ALL, cLocale_.c_str());
    }

  private:
    std::string cLocale_ = std::setlocale(LC_ALL, nullptr);
    std::locale cppLocale_;
};

/// Sets a locale of the C library in which numbers have a decimal comma, and returns its name; empty when none is
/// installed.
inline std::string setLocaleWithDecimalComma() {
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "nl_NL.UTF-8",
                                   "es_ES.UTF-8", "it_IT.UTF-8", "ru_RU.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) == nullptr) continue;
        if (std::string(std::localeconv()->decimal_point) == ",") return name;
    }
    return {};
}
