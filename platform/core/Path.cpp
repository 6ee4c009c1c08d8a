// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/Path.h>

#include <KivPlr/core/FatalError.h>

namespace KivPlr {

namespace {

const char* const Separators = "/\\";

char SeparatorOf(std::uint32_t style)
{
    return style == Path::SlashStyle ? '/' : '\\';
}

// Replaces every occurrence of the two-character \p pair by \p separator. The
// search goes on at the position of the replacement, so a run such as "/\\\"
// collapses completely.
void CollapsePair(std::string& text, const char* pair, char separator)
{
    std::string::size_type position = text.find(pair);
    while (position != std::string::npos) {
        text.replace(position, 2, 1, separator);
        position = text.find(pair, position);
    }
}

bool EndsWithSeparator(const std::string& text)
{
    return !text.empty() && (text.back() == '/' || text.back() == '\\');
}

// Climbs one level for every occurrence of \p parent in \p rest. The pattern
// is looked for anywhere in the rest but its leading three characters are the
// ones dropped; the directory manager joins names through this and relies on
// it staying so.
void ClimbWhileContained(std::string& rest, const char* parent, std::string& text)
{
    while (rest.find(parent) != std::string::npos) {
        rest.erase(0, 3);
        const std::string::size_type last = text.find_last_of(Separators);
        if (last != std::string::npos)
            text.erase(last);
    }
}

// Drops the first two characters of \p rest once when \p current occurs in it
// anywhere.
void DropOnceIfContained(std::string& rest, const char* current)
{
    if (rest.find(current) != std::string::npos)
        rest.erase(0, 2);
}

} // namespace

Path::Path() : style(SlashStyle) {}

Path::Path(const char* text) : style(SlashStyle), path(text != nullptr ? text : "")
{
    Normalise();
}

Path::Path(const std::string& text) : style(SlashStyle), path(text)
{
    Normalise();
}

Path::Path(const Path& other) = default;

Path::Path(std::uint32_t separatorStyle) : style(separatorStyle) {}

Path& Path::operator=(const Path& other)
{
    // The text alone: the style stays this object's own. Every constructor
    // makes slash paths, so in this library the two styles never meet.
    if (this != &other)
        path = other.path;
    return *this;
}

void Path::SetPath(const char* text, std::size_t length)
{
    if (text == nullptr)
        path.clear();
    else
        path.assign(text, length);
    Normalise();
}

void Path::SetPath(const std::string& text)
{
    path = text;
    Normalise();
}

const char* Path::GetPath() const
{
    return path.c_str();
}

std::uint32_t Path::GetStyle() const
{
    return style;
}

void Path::GetFile(std::string& file) const
{
    if (IsNullReference(&file))
        FatalError(L"Path: file NULL reference.");
    const std::string::size_type last = path.find_last_of(Separators);
    file = last == std::string::npos ? path : path.substr(last + 1);
}

void Path::GetDirectory(std::string& directory) const
{
    if (IsNullReference(&directory))
        FatalError(L"Path: directory NULL reference.");
    const std::string::size_type last = path.find_last_of(Separators);
    directory = last == std::string::npos ? path : path.substr(0, last);
}

bool Path::IsAbsolute() const
{
    return !path.empty() && (path[0] == '/' || path[0] == '\\');
}

void Path::MakeAbsolute(const std::string& base)
{
    if (IsAbsolute())
        return;
    std::string rest;
    rest.swap(path);
    path = base;

    // Every "../" is consumed before any "..\" is looked at.
    ClimbWhileContained(rest, "../", path);
    ClimbWhileContained(rest, "..\\", path);
    DropOnceIfContained(rest, "./");
    DropOnceIfContained(rest, ".\\");

    if (rest == ".")
        return;
    if (!EndsWithSeparator(path))
        path += SeparatorOf(style);
    path += rest;
}

void Path::Normalise()
{
    const char separator = SeparatorOf(style);
    CollapsePair(path, "/\\", separator);
    CollapsePair(path, "\\/", separator);
    // Doubled equal separators ("//") are left alone: nothing here reads a
    // path segment by segment, and callers compare the text they gave.
    const char from = style == SlashStyle ? '\\' : '/';
    for (char& character : path) {
        if (character == from)
            character = separator;
    }
}

} // namespace KivPlr
