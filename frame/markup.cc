#include "frame/markup.h"

#include <span>

#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/strings.h"

namespace tidewell {

void AppendEscapedHtml(std::string& out, std::string_view text) {
  // Runs with nothing to escape, most text, are copied whole.
  auto special = [](char c) { return c == '&' || c == '<' || c == '>' || c == '"'; };
  size_t from = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    if (!special(text[at])) continue;
    out.append(text.data() + from, at - from);
    switch (text[at]) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      default:
        out += "&quot;";
    }
    from = at + 1;
  }
  out.append(text.data() + from, text.size() - from);
}

std::string EscapeHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  AppendEscapedHtml(escaped, text);
  return escaped;
}

void ReplaceHeight(Page& page, long height) {
  page.PageBuffer =
      Replace(std::move(page.PageBuffer), "<height></height>", std::to_string(height));
}

std::string SettleFrameHeight(std::string component_output) {
  return Replace(std::move(component_output), "<height></height>",
                 std::to_string(kFormScreenHeight));
}

long ByBrowser(const Page& page, long standard, long navigator, long opera) {
  if (page.BrowserKind == browsers::kNavigator) return navigator;
  if (page.BrowserKind == browsers::kOpera) return opera;
  return standard;
}

void AppendTitleBar(Page& page, std::string_view title, TitleCell first_cell) {
  std::string& out = page.PageBuffer;
  out += "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  out += first_cell == TitleCell::kSpaced ? "<td align=center valign=middle width=60 >"
                                          : "<td align=center valign=middle width=60>";
  out += "&nbsp;";
  out += "</td>";
  out += "<td class=mwdname align=left valign=middle width=550>";
  out += "&nbsp;<b>";
  out += title;
  out += "</b>";
  out += "<td>";
  out += "</tr>";
  out += "</table>";
}

std::string TextOption(std::string_view value, std::string_view label, bool selected) {
  std::string option =
      selected ? "<option selected class=text value=" : "<option class=text value=";
  option += value;
  option += " >";
  option += label;
  option += "</option>";
  return option;
}

void AppendLogo(Page& page) {
  page.PageBuffer += "<img src=" + page.props.ImagePath +
                     "logo_tidewell.gif border=0 width=270 height=103 align=absmiddle ><hr "
                     "size=1 color=#c0c0c0 >";
}

namespace {

// The validator script; with `passwords_must_match`, the password check after the fields.
void AppendValidatorScript(Page& page, std::span<const RequiredField> fields,
                           bool passwords_must_match) {
  std::string& out = page.PageBuffer;
  auto line = [&out](std::string_view text) {
    out += text;
    out += "\r\n";
  };
  out += "\r\n";
  line("<script language=javascript>");
  line("<!--");
  line("function validator(theForm)");
  line("{");
  for (const RequiredField& field : fields) {
    line("if (theForm." + std::string(field.name) + ".value == \"\")");
    line("{");
    line("alert('Please enter a value in the " + std::string(field.label) + " field.');");
    line("theForm." + std::string(field.name) + ".focus();");
    line("return (false);");
    line("}");
  }
  if (passwords_must_match) {
    line("if (theForm.password.value != theForm.confirm.value)");
    line("{");
    line("alert('Password and Confirm Password do not match.');");
    line("theForm.password.focus();");
    line("return (false);");
    line("}");
  }
  line("return (true);");
  line("}");
  line("//-->");
  line("</script>");
}

}  // namespace

void AppendValidator(Page& page, std::initializer_list<RequiredField> fields) {
  AppendValidatorScript(page, std::span<const RequiredField>(fields.begin(), fields.size()),
                        /*passwords_must_match=*/false);
}

void AppendPasswordValidator(Page& page, const std::vector<RequiredField>& fields) {
  AppendValidatorScript(page, fields, /*passwords_must_match=*/true);
}

void AppendDatePickerScript(Page& page) {
  int width = 0, height = 0;
  if (page.BrowserKind == browsers::kExplorer) {
    width = 180, height = 165;
  } else if (page.BrowserKind >= browsers::kNetscape && page.BrowserKind <= browsers::kOpera) {
    width = 200, height = 185;
  }
  std::string& out = page.PageBuffer;
  auto line = [&out](std::string_view text) {
    out += text;
    out += "\r\n";
  };
  out += "\r\n";
  line("<script language=javascript>");
  line("function datepicker(url)");
  line("{");
  line("var x = screen.width/4;");
  line("var y = screen.height/2;");
  line(
      "var winFeatures = "
      "'toolbar=0,location=0,directories=0,status=0,menubar=0,scrollbars=0,resizable=0,width=" +
      std::to_string(width) + ",height=" + std::to_string(height) +
      ",left=' + y + ',top=' + x + ',screenX=' + x + ',screenY=' + y;");
  line("dp = window.open(url,'dp',winFeatures);");
  line("dp.focus();");
  line("}");
  line("</script>");
}

void AppendBodyTable(Page& page) {
  page.PageBuffer +=
      "<table align=center width=610 height=456 cellpadding=3 cellspacing=0 border=1 "
      "bordercolor=" +
      page.props.TidewellColor + ">";
}

void AppendHelpColumn(Page& page, std::string_view help_link) {
  page.PageBuffer +=
      "<td class=dtname align=center valign=top width=50 height=456 nowrap><a class=text href=";
  page.PageBuffer += help_link;
  page.PageBuffer += " title=\"Show me help for this page.\" ><img src=" + page.props.ImagePath +
                     "icon_help.gif width=30 height=30 border=0 align=absmiddle ></a></td>";
}

void AppendFormBodyOpening(Page& page, long help_screen) {
  AppendBodyTable(page);
  page.PageBuffer += "<tr bgcolor=#ffffff>";
  AppendHelpColumn(page, ReturningLink(page, help_screen));
  page.PageBuffer += "<td class=text align=left valign=top width=560 height=456>";
}

void AppendFormBodyClosing(Page& page) {
  page.PageBuffer += "</td>";
  page.PageBuffer += "</tr>";
  page.PageBuffer += "</table>";
}

void AppendDateField(Page& page, std::string_view name, std::string_view value,
                     std::string_view picker_link) {
  std::string& out = page.PageBuffer;
  out += "<input maxlength=10 class=text type=text name=";
  out += name;
  out += " value=\"";
  AppendEscapedHtml(out, value);
  out += "\" size=15 >&nbsp;<a title=\"Date Picker\" href=javascript:datepicker('";
  out += picker_link;
  out += "'); ><img src=";
  out += page.props.ImagePath;
  out += "icon_dpicker.gif width=16 height=16 align=absmiddle border=0 /></a>";
}

}  // namespace tidewell
