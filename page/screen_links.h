#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

struct Page;

// The first field of a link: the screen it opens (a screens:: constant), and after a "/"
// either the view a form returns to when it is done ("4/3") or which way the link steps
// ("1/p", "1/n": the week view reached from the month before or after it).
struct LinkScreen {
  LinkScreen(long screen) : screen(screen) {}  // NOLINT: a bare screen is the common case
  LinkScreen(long screen, std::string argument) : screen(screen), argument(std::move(argument)) {}

  long screen;
  std::string argument;
};

// A link to `screen` that comes back to `return_view`: the forms, the help screens, the picker.
LinkScreen ScreenReturningTo(long screen, long return_view);

// Which way a paging link steps, carried as the screen's argument.
enum class Step { kBack, kOn };
LinkScreen ScreenSteppingTo(long screen, Step step);

// What a link changes from the page it is on. What it leaves unset stays as the page has it:
// the date (CurrentDate), the hour (CurrentHour) and the sort token (SortOrder); the item is
// none (0) unless named, and `suffix` rides after the last field (the date picker's field
// name). The user and administrator keys are always the page's.
struct LinkChanges {
  std::optional<Variant> date = std::nullopt;
  std::optional<Variant> hour = std::nullopt;
  Variant item = 0L;
  std::optional<Variant> sort = std::nullopt;
  std::string_view suffix = {};
};

// A link to `screen` from this page, with `changes`; see link_codec.h for its fields.
std::string LinkTo(const Page& page, const LinkScreen& screen, const LinkChanges& changes = {});
// The same link written at the end of `out`.
void AppendLinkTo(std::string& out, const Page& page, const LinkScreen& screen,
                  const LinkChanges& changes = {});

// The login screen on the present date, at hour 0, with no keys and no sort: following it
// forgets the user (the header's logout button).
std::string SignedOutLink(const Page& page);

// A link to `screen` that returns to the view in use (`ReturnView`), on the date and hour
// shown, carrying the user, sort and administrator keys: the header's buttons, the help icons
// and the forms' actions. `item_id` rides along for the forms that edit one.
std::string ReturningLink(const Page& page, long screen, long item_id = 0);

// A date field's picker: screen 5, handing the chosen date to `form_screen` (the item form
// gives 5, the search form 15), opening on the month of the date in the field, or on the month
// in view while the field holds no date. The suffix names the search form's field.
std::string DatePickerLink(const Page& page, long form_screen, const std::string& field_value,
                           std::string_view suffix = "");

}  // namespace tidewell
