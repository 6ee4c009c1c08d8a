// SPDX-License-Identifier: Apache-2.0
// MetadataBase.h - the changed flag, the cached fragment and the change rule
// that every metadata provider shares.
//
// A provider derives from MetadataBase and implements Refresh only: it builds
// its fragment and hands it to AcceptFragment. Created with new and owned
// through SmartPtr<IMetadata>; used by one thread at a time.
//
// Fragments are built by appending to one string (Fragment below): a
// refresh runs every cycle, and a stream's locale and buffer machinery cost
// more than the text itself.
//
// Example:
//   class FixedName : public MetadataBase {     // MetadataComputerName reads the record instead
//   public:
//       void Refresh() override
//       {
//           Fragment fragment;
//           WriteElement(fragment, "ComputerName", "unit-1");
//           AcceptFragment(fragment.Text());
//       }
//   };
//   SmartPtr<IMetadata> provider(new FixedName);
//   provider->Refresh();                         // changed: "<ComputerName>unit-1</ComputerName>"
#ifndef KIVCONFIG_METADATABASE_H
#define KIVCONFIG_METADATABASE_H

#include <KivConfig/IMetadata.h>
#include <KivPlr/core/Object.h>

#include <cstddef>
#include <string>

namespace KivConfig {

class MetadataBase : private KivPlr::Object, public IMetadata
{
public:
    bool IsChanged() const override;
    void ClearChanged() override;
    void GetXml(std::string& out) const override;

protected:
    /// A fragment's text under construction, appended piece by piece. Stop
    /// ends it where it stands: whatever is appended after that is dropped.
    class Fragment
    {
    public:
        /// Empty; reserves room for \p expected characters.
        explicit Fragment(std::size_t expected = 0) { text.reserve(expected); }

        /// Appends the zero-terminated \p piece, unless stopped.
        Fragment& Append(const char* piece)
        {
            if (!stopped)
                text.append(piece);
            return *this;
        }
        /// Appends \p piece, unless stopped.
        Fragment& Append(const std::string& piece)
        {
            if (!stopped)
                text.append(piece);
            return *this;
        }
        /// Appends \p value in decimal, unless stopped.
        Fragment& AppendNumber(unsigned long value);
        /// Drops everything appended from now on.
        void Stop() { stopped = true; }
        /// The text so far.
        const std::string& Text() const { return text; }

    private:
        std::string text;
        bool stopped = false;
    };

    ~MetadataBase() override = default;

    /// Not changed, empty cached text.
    MetadataBase();

    /// The common change rule: a \p fragment that differs from the cached text
    /// replaces it and sets the changed flag; an equal one changes nothing.
    void AcceptFragment(const std::string& fragment);

    /// Appends "<element>", the zero-terminated \p value and "</element>" to
    /// \p out, the value as it is (no escaping). A null \p value stops \p out
    /// right after the opening tag, so that nothing more is added to it: the
    /// fragment then ends just before the missing value.
    static void WriteElement(Fragment& out, const char* element, const char* value);

private:
    bool changed;
    std::string cachedXml;
};

} // namespace KivConfig

#endif
