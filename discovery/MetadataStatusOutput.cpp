// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusOutput.h>

#include <cstdint>
#include <sstream>

namespace KivConfig {

namespace {

const std::uint32_t PublishedOutputKind = 0;

} // namespace

MetadataStatusOutput::MetadataStatusOutput(const VpSts::CStatus& status) : status(status)
{
}

void MetadataStatusOutput::Refresh()
{
    std::ostringstream fragment;
    fragment << "<Outputs>";
    for (unsigned int index = 0;; ++index) {
        const VpSts::COutput* output = status.outputList[index];
        if (output == nullptr)
            break;
        if (output->outputKind != PublishedOutputKind)
            continue;
        // The attribute quotes keep their backslashes: discovery clients of
        // the family parse exactly this form.
        fragment << R"(<Output number=\")" << static_cast<unsigned long>(output->outputNumber)
                 << R"(\" i:type=\"Cablor6Type\">)"
                 << "<TranslationTable>"
                 << "<Rows>" << static_cast<unsigned long>(output->translationRows) << "</Rows>"
                 << "<Columns>" << static_cast<unsigned long>(output->translationColumns)
                 << "</Columns>"
                 << "</TranslationTable>"
                 << "</Output>";
    }
    fragment << "</Outputs>";
    AcceptFragment(fragment.str());
}

} // namespace KivConfig
