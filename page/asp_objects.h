#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tidewell {

// One of the Request object's collections (Form, QueryString, Cookies, ServerVariables).
// Names match without regard to case; a name given several times reads as its values joined
// by ", ", and a missing name reads as "", as in the original object model.
class AspCollection {
 public:
  AspCollection() = default;
  AspCollection(std::initializer_list<std::pair<std::string, std::string>> items) : items_(items) {}

  void Add(std::string name, std::string value) {
    items_.emplace_back(std::move(name), std::move(value));
  }
  bool Contains(std::string_view name) const;
  std::string operator()(std::string_view name) const;
  const std::vector<std::pair<std::string, std::string>>& items() const { return items_; }

 private:
  std::vector<std::pair<std::string, std::string>> items_;
};

// The Request object as the component reads it. Each host fills one: the HTTP server from
// the socket, `tidewell render` from its command line, tests directly.
struct AspRequest {
  AspCollection QueryString;
  AspCollection Form;
  AspCollection Cookies;
  AspCollection ServerVariables;

  // Request("name"): QueryString, then Form, then Cookies, then ServerVariables.
  std::string operator()(std::string_view name) const;
};

// The Response object: the component writes the finished page with one Write.
class AspResponse {
 public:
  virtual ~AspResponse() = default;
  virtual void Write(std::string_view text) = 0;
  // Write for text the caller is done with: a response that keeps what it is given may take
  // it over instead of copying it (a month page is some hundred kilobytes).
  virtual void WriteOwned(std::string text) { Write(text); }
};

// A Response that keeps what was written, for hosts that wrap it in a page of their own.
class BufferedResponse : public AspResponse {
 public:
  void Write(std::string_view text) override { body_ += text; }
  void WriteOwned(std::string text) override {
    if (body_.empty()) {
      body_ = std::move(text);
    } else {
      body_ += text;
    }
  }
  const std::string& body() const { return body_; }
  // The body, handed over without a copy; the response is empty afterwards.
  std::string TakeBody() { return std::move(body_); }

 private:
  std::string body_;
};

// What the page hands the component in OnStartPage.
struct ScriptingContext {
  const AspRequest* Request = nullptr;
  AspResponse* Response = nullptr;
};

}  // namespace tidewell
