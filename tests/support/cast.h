#pragma once

#include "tests/support/seeder.h"

namespace tidewell::testing {

// The people of the site fixtures, each under a fixed key so that expected pages can name it:
// the administrator ann, bob and carol of the group Crew, and dave of the group Deck. Every
// one signs in with "pw".
namespace cast {

inline constexpr const char* kAnn = "0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a";
inline constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";
inline constexpr const char* kCarol = "0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c";
inline constexpr const char* kDave = "0d0d0d0d0d0d0d0d0d0d0d0d0d0d0d0d";

// Their accounts, for a fixture to adjust before it adds them.
struct Accounts {
  Account ann, bob, carol, dave;
};

inline Accounts AccountsIn(long crew, long deck) {
  return {
      .ann = {.key = kAnn, .name = "ann", .group = crew, .administrator = true, .initials = "AA"},
      .bob = {.key = kBob, .name = "bob", .group = crew, .initials = "BB"},
      .carol = {.key = kCarol, .name = "carol", .group = crew, .initials = "CC"},
      .dave = {.key = kDave, .name = "dave", .group = deck, .initials = "DD"},
  };
}

// Adds ann, bob, carol and dave, in that order.
inline void Add(Seeder& seeder, const Accounts& accounts) {
  for (const Account* account : {&accounts.ann, &accounts.bob, &accounts.carol, &accounts.dave}) {
    seeder.AddUser(*account);
  }
}

}  // namespace cast
}  // namespace tidewell::testing
