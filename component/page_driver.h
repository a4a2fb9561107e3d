#pragma once

namespace tidewell {

struct Page;

// Show: reads the request bound to the page, runs at most one posted action, draws the page
// and writes it to the response with one Write (unless ViewSourceMode asks for the text
// only). Link fields that do not convert raise an AutomationError; everything else that goes
// wrong becomes state the screens show.
void RunPageDriver(Page& page);

}  // namespace tidewell
