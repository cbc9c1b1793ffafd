#include "page.h"

namespace kzb::cli {

namespace {

constexpr const char *style = R"(
:root {
  color-scheme: light dark;
  --ground: #f6f5f2; --card: #ffffff; --ink: #22252a; --faint: #5d636b; --line: #dddad3; --accent: #8a3b12;
  --code: #f0eee9; --check: #e4e1da;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #16181b; --card: #1f2226; --ink: #e7e5e0; --faint: #a2a7ad; --line: #34383e; --accent: #f0a774;
    --code: #17191c; --check: #2b2f34;
  }
}
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 4rem; }
body { margin: 0; background: var(--ground); color: var(--ink); font: 16px/1.5 system-ui, sans-serif; }
header, main, footer { max-width: 76rem; margin: 0 auto; padding: 0 1rem; }
header { padding-top: 2rem; }
h1 { font-size: 1.7rem; line-height: 1.2; margin: 0 0 .5rem; overflow-wrap: anywhere; }
h2 { font-size: 1.25rem; margin: 2.5rem 0 1rem; }
h3 { font-size: 1.05rem; margin: 0; }
p { margin: .25rem 0 .75rem; color: var(--faint); max-width: 46rem; }
a { color: var(--accent); }
nav { position: sticky; top: 0; z-index: 1; background: var(--ground); border-bottom: 1px solid var(--line); }
nav div { max-width: 76rem; margin: 0 auto; padding: .6rem 1rem; display: flex; gap: 1.1rem; overflow-x: auto; }
nav a { white-space: nowrap; text-decoration: none; }
nav a:hover { text-decoration: underline; }
.room { display: grid; gap: 1rem; grid-template-columns: repeat(auto-fill, minmax(min(100%, 34rem), 1fr)); }
article { background: var(--card); border: 1px solid var(--line); border-radius: .6rem; padding: 1rem; min-width: 0; }
.pair { display: grid; grid-template-columns: 1fr 1fr; gap: .6rem; align-items: start; }
figure { margin: 0; min-width: 0; }
figcaption { font-size: .8rem; color: var(--faint); margin-top: .2rem; }
img { display: block; max-width: 100%; max-height: 22rem; width: auto; height: auto; border-radius: .25rem;
  background: repeating-conic-gradient(var(--check) 0 25%, transparent 0 50%) 0 0 / 16px 16px; }
pre { margin: .8rem 0 0; padding: .6rem .75rem; background: var(--code); border-radius: .35rem;
  font: .85rem/1.45 ui-monospace, monospace; white-space: pre-wrap; overflow-wrap: anywhere; }
pre .whole { white-space: nowrap; }
details { margin-top: .6rem; font-size: .9rem; color: var(--faint); }
summary { cursor: pointer; }
footer { margin-top: 2.5rem; padding-bottom: 2rem; border-top: 1px solid var(--line); padding-top: 1rem; }
@media (min-width: 60rem) { nav div { flex-wrap: wrap; gap: .3rem 1.1rem; } html { scroll-padding-top: 6rem; } }
@media (max-width: 30rem) { .pair { gap: .4rem; } article { padding: .75rem; } }
)";

std::string escaped(std::string_view text) {
    std::string html;
    for (const char letter : text) {
        if (letter == '&')
            html += "&amp;";
        else if (letter == '<')
            html += "&lt;";
        else if (letter == '>')
            html += "&gt;";
        else if (letter == '"')
            html += "&quot;";
        else
            html += letter;
    }
    return html;
}

std::string figure(const std::string &file, const std::string &caption, const std::string &alternative) {
    return "<figure><a href=\"" + escaped(file) + "\"><img src=\"" + escaped(file) + "\" alt=\"" +
           escaped(alternative) + "\" loading=\"lazy\"></a><figcaption>" + escaped(caption) +
           "</figcaption></figure>\n";
}

// A command line that does not break before the name of its output.
std::string command_text(const std::string &command) {
    const size_t output = command.rfind(" -o ") + 1;
    return escaped(command.substr(0, output)) + "<span class=\"whole\">" + escaped(command.substr(output)) + "</span>";
}

std::string article(const Exhibit &exhibit) {
    const MethodNote &note = *exhibit.note;
    std::string html = std::string("<article id=\"") + note.name + "\">\n<h3>" + note.name + "</h3>\n<p>" +
                       escaped(note.sentence) + "</p>\n<div class=\"pair\">\n";
    html += figure(exhibit.from, "before", "the picture before " + std::string(note.name));
    html += figure(exhibit.to, "after", "the picture after " + std::string(note.name)) + "</div>\n";
    html += "<pre>" + command_text(note.example) + "</pre>\n";
    if (note.remark != nullptr)
        html += "<details><summary>Good to know</summary>" + escaped(note.remark) + "</details>\n";
    return html + "</article>\n";
}

std::string section(const Room &room) {
    std::string html = std::string("<h2 id=\"") + room.family->page + "\">" + escaped(room.family->title) + "</h2>\n";
    html += "<div class=\"room\">\n";
    for (const Exhibit &exhibit : room.exhibits) html += article(exhibit);
    return html + "</div>\n";
}

} // namespace

std::string gallery_page(const std::string &title, const std::vector<Room> &rooms) {
    std::string html = "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
                       escaped(title) + " through PictureKZB</title>\n<style>" + style + "</style>\n</head>\n<body>\n";
    html += "<header>\n<h1>" + escaped(title) +
            " through PictureKZB</h1>\n"
            "<p>Every method, with the picture before and after it and the command that makes it. The commands run as "
            "they stand in this folder: <a href=\"photo.jpg\">photo.jpg</a> is the picture in a small size, "
            "<a href=\"photo.png\">photo.png</a> the same with an alpha that fades at the edges.</p>\n</header>\n";
    html += "<nav><div>\n";
    for (const Room &room : rooms)
        html += std::string("<a href=\"#") + room.family->page + "\">" + escaped(room.family->title) + "</a>\n";
    html += "</div></nav>\n<main>\n";
    for (const Room &room : rooms) html += section(room);
    return html + "</main>\n<footer><p>Made by <code>kzb gallery</code>. <code>kzb help METHOD</code> tells what each "
                  "argument takes.</p></footer>\n</body>\n</html>\n";
}

} // namespace kzb::cli
