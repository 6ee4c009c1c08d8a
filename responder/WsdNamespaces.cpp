// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/WsdNamespaces.h>

namespace KivWsd {

namespace {

const WsdNamespaces::Version discovery2005 = {
    "http://schemas.xmlsoap.org/ws/2004/08/addressing",
    "http://schemas.xmlsoap.org/ws/2005/04/discovery",
    "urn:schemas-xmlsoap-org:ws:2005:04:discovery",
    "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous",
    "http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc3986",
    "http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0",
    "http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc2396",
};

const WsdNamespaces::Version discovery2009 = {
    "http://www.w3.org/2005/08/addressing",
    "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01",
    "urn:docs-oasis-open-org:ws-dd:ns:discovery:2009:01",
    "http://www.w3.org/2005/08/addressing/anonymous",
    "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/rfc3986",
    "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01/strcmp0",
    nullptr,
};

} // namespace

const WsdNamespaces::Version& WsdNamespaces::Of(WsdVersion version)
{
    return version == WsdVersion::Discovery2005 ? discovery2005 : discovery2009;
}

} // namespace KivWsd
