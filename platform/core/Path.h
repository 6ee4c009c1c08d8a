// SPDX-License-Identifier: Apache-2.0
// Path.h - the value type in which every file-system path is handed around.
//
// A Path fixes its separator style when it is made and rewrites its text to
// that style, so paths written with "/" or "\" both work. Paths are plain
// values: anyone makes them on the stack and copies them freely; one Path
// must not be changed in one thread while another reads it.
//
// Example:
//   Path entry("logs\\today.txt");      // text "logs/today.txt"
//   entry.MakeAbsolute("/var/lib");     // "/var/lib/logs/today.txt"
//   std::string name;
//   entry.GetFile(name);                // "today.txt"
#ifndef KIVPLR_PATH_H
#define KIVPLR_PATH_H

#include <KivPlr/core/Export.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace KivPlr {

class KIVPLR_API Path
{
public:
    /// Separator style "/"; the only style the public constructors set.
    static constexpr std::uint32_t SlashStyle = 1;
    /// Separator style "\" (any style other than SlashStyle means backslash).
    static constexpr std::uint32_t BackslashStyle = 0;

    /// Slash style, empty text.
    Path();
    /// Slash style; \p text is copied and normalised: every "/\" and "\/"
    /// pair becomes one "/", then every "\" becomes "/". Doubled "//" and
    /// "." or ".." segments stay as they are. A null \p text gives an empty
    /// path.
    Path(const char* text);
    /// As Path(const char*).
    Path(const std::string& text);
    /// Copies style and text.
    Path(const Path& other);
    /// Copies the text only; this path keeps its own style and the copied
    /// text is not normalised again. Self-assignment does nothing.
    Path& operator=(const Path& other);
    ~Path() = default;

    /// Replaces the text by the first \p length bytes of \p text (embedded
    /// NUL bytes included) and normalises it to this path's style. A null
    /// \p text gives an empty path whatever \p length says.
    void SetPath(const char* text, std::size_t length);
    /// Replaces the text by \p text and normalises it to this path's style.
    void SetPath(const std::string& text);

    /// The text, NUL-terminated; valid while this Path lives unchanged.
    const char* GetPath() const;
    /// The separator style: SlashStyle, or anything else for backslash.
    std::uint32_t GetStyle() const;
    /// \p file = the part after the last "/" or "\"; the whole text without
    /// a separator; empty when the text ends with a separator. A null
    /// \p file reference is fatal, as is a null \p directory below.
    void GetFile(std::string& file) const;
    /// \p directory = the part before the last "/" or "\", without that
    /// separator; the whole text without a separator; empty for "/name".
    void GetDirectory(std::string& directory) const;
    /// True when the text begins with "/" or "\"; false for an empty text.
    bool IsAbsolute() const;

    /// Resolves this relative path against \p base; an absolute path is left
    /// as it is. The text becomes \p base (taken verbatim, not normalised);
    /// then, while the rest contains "../" anywhere, its first three
    /// characters are dropped and \p base loses its last separator and what
    /// follows (without a separator it stays); then the same for "..\";
    /// then a "./" anywhere drops the rest's first two characters once, and
    /// a ".\" anywhere once more. Finally a separator of this path's style
    /// (unless the text already ends with "/" or "\") and the rest are
    /// appended; a rest of exactly "." appends nothing.
    ///   Path("sub") on "/var/lib"  -> "/var/lib/sub"
    ///   Path("../x") on "/a/b"     -> "/a/x"
    ///   Path(".") on "/a/"         -> "/a/"
    ///   Path("") on "/a"           -> "/a/"
    void MakeAbsolute(const std::string& base);

protected:
    /// An empty path of the given separator style, for classes built on Path
    /// that keep backslash paths; the library itself makes slash paths only.
    explicit Path(std::uint32_t separatorStyle);

private:
    void Normalise();

    std::uint32_t style;
    std::string path;
};

} // namespace KivPlr

#endif
