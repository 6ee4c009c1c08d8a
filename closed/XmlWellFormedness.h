// SPDX-License-Identifier: Apache-2.0
// XmlWellFormedness.h - the well-formedness rules that pugixml does not
// enforce, checked on the raw bytes of a document that pugixml accepted.
//
// pugixml is lenient on purpose: it keeps "&foo;" and a lone "&" as text,
// decodes "&#0;", accepts "<" inside attribute values, "]]>" in text, text
// and further elements outside the root, and skips a document type
// declaration. The loaders refuse all of these so that a file means the same
// to every XML parser. Stateless; any thread may use it.
//
// Example:
//   std::string text = "<a>&nbsp;</a>";
//   std::size_t offset = 0;
//   std::string fault;
//   if (!XmlWellFormedness::Check(text.data(), text.size(), offset, fault))
//       std::printf("%zu: %s\n", offset, fault.c_str());   // "unknown entity reference &nbsp;"
#ifndef KIV_CLOSED_XMLWELLFORMEDNESS_H
#define KIV_CLOSED_XMLWELLFORMEDNESS_H

#include <cstddef>
#include <string>

namespace KivClosed {

class XmlWellFormedness
{
public:
    /// Checks \p data, which pugixml has parsed without error, for: entity
    /// and character references (only the five predefined entities and
    /// references to characters XML allows), "<" in attribute values, "]]>"
    /// in text, text or a second element outside the root element, and
    /// document type declarations (not supported). Answers false at the first
    /// fault with its byte offset and a description.
    static bool Check(const char* data, std::size_t size, std::size_t& faultOffset, std::string& fault);
};

} // namespace KivClosed

#endif
