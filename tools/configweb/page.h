// The page configweb serves at "/": one HTML document with its style and
// script inline, so the program needs no files and nothing is fetched at
// run time. The script lists the menu groups, shows a group's parameters
// with controls by kind, sets values through the JSON API and keeps them
// current from the event stream.
#ifndef TOOLS_CONFIGWEB_PAGE_H
#define TOOLS_CONFIGWEB_PAGE_H

namespace configweb {

// The document; static storage, valid for the life of the program.
const char* PageHtml();

}  // namespace configweb

#endif  // TOOLS_CONFIGWEB_PAGE_H
