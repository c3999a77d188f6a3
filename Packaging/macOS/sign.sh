#!/usr/bin/env bash
# Signs the bundle with the hardened runtime. Usage: Packaging/macOS/sign.sh BUNDLE [IDENTITY]
#
# IDENTITY is the name of a code signing certificate in the keychain; without one the signature is ad hoc. The
# permissions that a user grants are tied to the signature: with an ad hoc one they are lost at every build, with a
# certificate, be it self-signed, they stay.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

if (($# < 1 || $# > 2)) || [[ ! -f ${1-}/Contents/Info.plist ]]; then
    echo "usage: ${0##*/} BUNDLE [IDENTITY]" >&2
    exit 2
fi
bundle=$1
identity=${2:--}

codesign --force --options runtime --entitlements "$here/Quillon.entitlements" --sign "$identity" "$bundle"
codesign --verify --strict --verbose=2 "$bundle"
