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
//           Fragment fragment(*this);
//           WriteElement(fragment, "ComputerName", "unit-1");
//           AcceptFragment(fragment);
//       }
//   };
//   SmartPtr<IMetadata> provider(new FixedName);
//   provider->Refresh();                         // changed: "<ComputerName>unit-1</ComputerName>"
#ifndef KIVCONFIG_METADATABASE_H
#define KIVCONFIG_METADATABASE_H

#include <KivConfig/IMetadata.h>
#include <KivPlr/core/Object.h>

#include <cstddef>
#include <cstring>
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
    /// It is built in its provider's own buffer, which keeps its capacity
    /// from refresh to refresh: a steady cycle allocates nothing.
    class Fragment
    {
    public:
        /// Empty, in \p owner's buffer; one fragment of a provider at a time.
        explicit Fragment(MetadataBase& owner) : text(owner.building)
        {
            // The whole capacity is writable room; Text() trims it to what
            // was written.
            text.resize(text.capacity());
        }

        Fragment(const Fragment&) = delete;
        Fragment& operator=(const Fragment&) = delete;

        /// Appends the zero-terminated \p piece, unless stopped. Inline, so
        /// that the length of a literal is counted by the compiler.
        Fragment& Append(const char* piece) { return AppendBytes(piece, std::strlen(piece)); }
        /// Appends \p piece, unless stopped.
        Fragment& Append(const std::string& piece) { return AppendBytes(piece.data(), piece.size()); }
        /// Appends \p value in decimal, unless stopped.
        Fragment& AppendNumber(unsigned long value);
        /// Drops everything appended from now on.
        void Stop() { stopped = true; }
        /// The text so far.
        const std::string& Text()
        {
            text.resize(used);
            return text;
        }

    private:
        Fragment& AppendBytes(const char* bytes, std::size_t count)
        {
            if (stopped)
                return *this;
            if (count > text.size() - used)
                MakeRoom(count);
            std::memcpy(&text[used], bytes, count);
            used += count;
            return *this;
        }
        /// Grows the room to take \p count more bytes.
        void MakeRoom(std::size_t count);

        std::string& text;
        std::size_t used = 0;
        bool stopped = false;
    };

    ~MetadataBase() override = default;

    /// Not changed, empty cached text.
    MetadataBase();

    /// The common change rule: a \p fragment that differs from the cached text
    /// replaces it and sets the changed flag; an equal one changes nothing.
    void AcceptFragment(const std::string& fragment);
    /// The same rule for a \p fragment built in this provider's buffer,
    /// taken over without a copy when it differs.
    void AcceptFragment(Fragment& fragment);

    /// Appends "<element>", the zero-terminated \p value and "</element>" to
    /// \p out, the value as it is (no escaping). A null \p value stops \p out
    /// right after the opening tag, so that nothing more is added to it: the
    /// fragment then ends just before the missing value.
    static void WriteElement(Fragment& out, const char* element, const char* value);

    /// WriteElement for an element whose tags are literals: \p open
    /// ("<Name>") and \p close ("</Name>"). Inline, so that the tags'
    /// lengths are counted by the compiler; the same stop at a null value.
    static void WriteTagged(Fragment& out, const char* open, const char* close, const char* value)
    {
        out.Append(open);
        if (value == nullptr)
            out.Stop();
        else
            out.Append(value);
        out.Append(close);
    }

private:
    bool changed;
    std::string cachedXml;
    /// Where Fragment builds the next text.
    std::string building;
};

} // namespace KivConfig

#endif
