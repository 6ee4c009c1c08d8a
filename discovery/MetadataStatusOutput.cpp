// SPDX-License-Identifier: Apache-2.0
#include <KivConfig/MetadataStatusOutput.h>

#include <cstdint>

namespace KivConfig {

namespace {

const std::uint32_t PublishedOutputKind = 0;

} // namespace

MetadataStatusOutput::MetadataStatusOutput(const VpSts::CStatus& status) : status(status)
{
}

void MetadataStatusOutput::Refresh()
{
    Fragment fragment(*this);
    fragment.Append("<Outputs>");
    for (unsigned int index = 0;; ++index) {
        const VpSts::COutput* output = status.outputList[index];
        if (output == nullptr)
            break;
        if (output->outputKind != PublishedOutputKind)
            continue;
        // The attribute quotes keep their backslashes: discovery clients of
        // the family parse exactly this form.
        fragment.Append(R"(<Output number=\")")
            .AppendNumber(output->outputNumber)
            .Append(R"(\" i:type=\"Cablor6Type\"><TranslationTable><Rows>)")
            .AppendNumber(output->translationRows)
            .Append("</Rows><Columns>")
            .AppendNumber(output->translationColumns)
            .Append("</Columns></TranslationTable></Output>");
    }
    fragment.Append("</Outputs>");
    AcceptFragment(fragment);
}

} // namespace KivConfig
