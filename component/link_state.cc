#include "component/link_state.h"

#include <string>

#include "accounts/key_check.h"
#include "page/link_codec.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

// LinkFields(i) as text; a payload with fewer fields fails as the array access did.
std::string Field(const Page& page, size_t index) {
  if (index >= page.LinkFields.size()) RaiseSubscriptOutOfRange();
  return CStr(page.LinkFields[index]);
}

void StartWithoutLink(Page& page) {
  page.Screen = screens::kLogin;
  page.CurrentDate = Today();
  page.CurrentHour = page.props.DefaultStartHour;
  page.ItemId = 0;
  page.UserKey.clear();
  page.SortOrder.clear();
  page.AdminKey.clear();
  page.LinkFields = {Variant(""),
                     Variant(screens::kLogin),
                     Variant(page.CurrentDate),
                     Variant(page.CurrentHour),
                     Variant(0),
                     Variant(""),
                     Variant(""),
                     Variant(""),
                     Variant("")};
}

// Field 1: "screen", "screen/return view" or "screen/argument".
void ReadScreenField(Page& page, const std::string& field) {
  std::vector<std::string> parts = Split(field, '/');
  if (parts.size() == 2 && IsNumeric(parts[1])) {
    page.Screen = CLng(parts[0]);
    page.ReturnView = CLng(parts[1]);
  } else if (parts.size() == 2) {
    page.ScreenArgument = parts[1];
    page.Screen = CLng(parts[0]);
    page.ReturnView = page.Screen;
  } else {
    page.Screen = CLng(parts[0]);
    page.ReturnView = page.Screen;
  }
}

// Field 4: the item id, with a trailing "d" when the link asks for the item's deletion.
void ReadItemField(Page& page, const std::string& field) {
  if (!field.empty() && field.back() == 'd') {
    page.DeletionRequested = true;
    page.ItemId = CLng(field.substr(0, field.size() - 1));
  } else {
    page.ItemId = CLng(field);
  }
}

// Field 5: a well-formed, unexpired signed key yields the bare key; anything else logs out.
// Its mac is checked once the database is open, against the account it names.
void ReadUserKeyField(Page& page, const std::string& field) {
  page.UserKeyInLink = ReadSignedKey(field);
  page.UserKey = page.UserKeyInLink ? page.UserKeyInLink->key : "";
  if (!page.UserKeyInLink) {
    if (!field.empty()) ++page.LinkKeysRefused;
    RejectUserKey(page);
  }
}

// Field 7: the acting administrator's key. One that fails the check is dropped but remembered,
// so that loading the user can refuse the calendar it was meant to open.
void ReadAdminKeyField(Page& page, const std::string& field) {
  page.AdminKeyInLink = ReadSignedKey(field);
  page.AdminKey = page.AdminKeyInLink ? page.AdminKeyInLink->key : "";
  page.AdminKeyRejected = !field.empty() && !page.AdminKeyInLink;
  if (page.AdminKeyRejected) ++page.LinkKeysRefused;
}

}  // namespace

void RestoreLinkState(Page& page) {
  page.CurrentDate = Today();
  page.CurrentHour = page.props.DefaultStartHour;
  std::string ws = page.request ? page.request->QueryString("WS") : "";
  if (ws.empty()) return StartWithoutLink(page);

  std::vector<std::string> pieces = Split(DecodeQueryString(ws, page.props.HexQueryString), '~');
  page.LinkFields.assign(pieces.begin(), pieces.end());

  ReadScreenField(page, Field(page, 1));
  if (std::string date = Field(page, 2); IsDate(date)) page.CurrentDate = CDate(date);
  page.CurrentHour = CLng(Field(page, 3));
  ReadItemField(page, Field(page, 4));
  ReadUserKeyField(page, Field(page, 5));
  page.SortOrder = Field(page, 6);
  ReadAdminKeyField(page, Field(page, 7));
}

long BrowserKindOf(std::string_view user_agent) {
  long kind = browsers::kExplorer;
  if (user_agent.find("MSIE") != std::string_view::npos) kind = browsers::kExplorer;
  if (user_agent.find("Netscape") != std::string_view::npos) kind = browsers::kNetscape;
  if (user_agent.find("Nav") != std::string_view::npos) kind = browsers::kNavigator;
  if (user_agent.find("Opera") != std::string_view::npos) kind = browsers::kOpera;
  return kind;
}

std::string ScriptNameOf(std::string_view url) {
  size_t slash = url.rfind('/');
  std::string name(slash == std::string_view::npos ? url : url.substr(slash + 1));
  return name + "?";
}

}  // namespace tidewell
