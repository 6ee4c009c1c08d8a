#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What the status collector should report for this machine's network, as
`ip -j addr` and `ip -j route` see it: one line per interface other than
loopback, in interface index order,

    number|name|mac|ipv4|ipv6|gateway|subnet

with "-" for an item the interface does not have."""
import ipaddress
import json
import subprocess


def ip_json(*arguments):
    return json.loads(subprocess.check_output(["ip", "-j", *arguments]) or b"[]")


def hardware_address(link):
    address = link.get("address")
    if not address or link.get("link_type") in ("none", "loopback"):
        return None
    try:
        # Tunnels show their hardware address as an IP address.
        raw = ipaddress.ip_address(address).packed
    except ValueError:
        return address.lower()
    return ":".join("%02x" % byte for byte in raw)


def first(items, predicate):
    return next((item for item in items if predicate(item)), None)


def gateway(routes, name):
    best = None
    for route in routes:
        if route.get("dst") != "default" or route.get("dev") != name or "gateway" not in route:
            continue
        if best is None or route.get("metric", 0) < best.get("metric", 0):
            best = route
    return best["gateway"] if best else None


def main():
    routes = ip_json("-4", "route", "show", "table", "main")
    for link in sorted(ip_json("addr"), key=lambda item: item["ifindex"]):
        if "LOOPBACK" in link.get("flags", []):
            continue
        addresses = link.get("addr_info", [])
        ipv4 = first(addresses, lambda item: item.get("family") == "inet")
        ipv6 = first(addresses, lambda item: item.get("family") == "inet6" and item.get("scope") == "global") or \
            first(addresses, lambda item: item.get("family") == "inet6" and item.get("scope") == "link")
        subnet = str(ipaddress.IPv4Network("0.0.0.0/%d" % ipv4["prefixlen"]).netmask) if ipv4 else None
        fields = [str(link["ifindex"]), link["ifname"], hardware_address(link),
                  ipv4["local"] if ipv4 else None, ipv6["local"] if ipv6 else None,
                  gateway(routes, link["ifname"]), subnet]
        print("|".join(field if field is not None else "-" for field in fields))


main()
