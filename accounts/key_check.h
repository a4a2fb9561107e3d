#pragma once

namespace tidewell {

struct Page;

// The second half of the key check. The link state (component/link_state.h) accepts a key
// that is well formed and unexpired; its mac is signed over a stamp of the account it names
// (page/link_keys.h), so only the database can confirm it. A key whose account is gone,
// or whose password changed since the link was signed, fails here, before any posted action
// runs: such a request writes nothing.

// Confirms UserKey and AdminKey as the link carried them. A user key that fails signs out
// (RejectUserKey); an administrator key that fails is dropped and remembered as rejected. The
// stamps read become the page's, so its own links are signed over them. A failed read is the
// request's pending error.
void ConfirmLinkKeys(Page& page);

// Reads the stamps of UserKey and AdminKey that the page does not know yet (a user who just
// signed in, an administrator who chose another account, a changed password), so that every
// link the page writes opens the calendar it names. A failed read leaves the stamp unknown:
// such links then open nothing.
void SettleKeyStamps(Page& page);

// A user key that failed the check: the key is dropped and the login screen follows (the
// first-administrator form keeps its screen).
void RejectUserKey(Page& page);
// An administrator key that failed the check: dropped, and remembered as rejected.
void RejectAdminKey(Page& page);

}  // namespace tidewell
