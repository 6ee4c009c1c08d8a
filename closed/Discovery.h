// SPDX-License-Identifier: Apache-2.0
// Discovery.h - one service description for network discovery, written as
// the file "<name>.xml" into the process's current working directory.
//
// The publisher makes one on its stack per cycle, fills it and writes it; the
// object owns nothing but its texts. One thread at a time; WriteToFile uses
// the working directory, which belongs to the whole process.
//
// Example:
//   KivDiscoveryClient::Discovery description("Management");
//   description.AddType("cpp:Management");
//   description.AddScope("http://standards.kivotrel.example/2011/videoprocessor/trx");
//   description.SetPort(8080);
//   description.SetMetaData("<cpp:Config></cpp:Config>");
//   if (!description.WriteToFile())     // ./Management.xml, replaced atomically
//       std::fprintf(stderr, "%s\n", description.ErrorMessage().c_str());
#ifndef KIV_CLOSED_DISCOVERY_H
#define KIV_CLOSED_DISCOVERY_H

#include <string>
#include <vector>

namespace KivDiscoveryClient {

class Discovery
{
public:
    /// A description named \p name, with no types or scopes, port 0 and empty
    /// metadata. The name is checked only by WriteToFile.
    explicit Discovery(std::string name);
    ~Discovery();

    /// Adds one type, written after those added before.
    void AddType(const std::string& type);

    /// Adds one scope, written after those added before.
    void AddScope(const std::string& scope);

    /// Sets the port; the last call wins.
    void SetPort(unsigned short port);

    /// Sets the metadata text; the last call wins.
    void SetMetaData(const std::string& metadata);

    /// Writes "<name>.xml" into the current working directory, replacing an
    /// earlier file atomically and durably: a reader sees the old whole file
    /// or the new whole file. Answers false, with ErrorMessage() saying why,
    /// when the name is not a plain file name (empty, ".", "..", holding "/"
    /// or a zero byte), when a text is not valid UTF-8 or holds a character
    /// XML cannot carry (a control character other than tab, line feed and
    /// carriage return), or when writing fails (disk full, directory not
    /// writable or gone). On failure the earlier file is left as it was and no
    /// temporary file remains. A write also removes the temporary files
    /// ".<name>.xml.<12 hex digits>.tmp" that writers killed before their
    /// rename left behind: only regular files of this user that no live
    /// writer holds locked (see AtomicFileWriter), nothing else.
    bool WriteToFile();

    /// Why the last WriteToFile failed; empty after one that succeeded.
    const std::string& ErrorMessage() const;

    /// The XML text that WriteToFile would write. Answers false, with the
    /// reason in \p fault, when a text cannot be carried (the name is not
    /// checked as a file name here).
    bool Render(std::string& document, std::string& fault) const;

    /// "<name>.xml".
    std::string FileName() const;

    /// The name given to the constructor.
    const std::string& Name() const;
    /// The types, in call order.
    const std::vector<std::string>& Types() const;
    /// The scopes, in call order.
    const std::vector<std::string>& Scopes() const;
    /// The port.
    unsigned short Port() const;
    /// The metadata text.
    const std::string& MetaData() const;

private:
    std::string name;
    std::vector<std::string> types;
    std::vector<std::string> scopes;
    unsigned short port;
    std::string metaData;
    std::string errorMessage;
};

} // namespace KivDiscoveryClient

#endif
