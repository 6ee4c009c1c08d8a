# SPDX-License-Identifier: Apache-2.0
# Accounts: PAM for authentication and password changes, libcrypt for the
# password hash that useradd is given. Looked up through the find root so
# that the armhf lane links the sysroot's libraries and sees its headers.
# The shared objects are named by soname first: in an unpacked sysroot the
# development links (libpam.so -> /lib/...) point at the host's root and
# would leave only the static archives.
find_library(KIV_PAM_LIBRARY NAMES libpam.so.0 pam REQUIRED)
find_library(KIV_CRYPT_LIBRARY NAMES libcrypt.so.1 crypt REQUIRED)
find_path(KIV_PAM_INCLUDE_DIR security/pam_appl.h REQUIRED)
find_path(KIV_CRYPT_INCLUDE_DIR crypt.h REQUIRED)
target_include_directories(kivplr SYSTEM PRIVATE ${KIV_PAM_INCLUDE_DIR} ${KIV_CRYPT_INCLUDE_DIR})
target_link_libraries(kivplr PRIVATE ${KIV_PAM_LIBRARY} ${KIV_CRYPT_LIBRARY})
# The PAM conversation (kivplr_internal) needs PAM's types, not the library.
target_include_directories(kivplr_internal SYSTEM PRIVATE ${KIV_PAM_INCLUDE_DIR})
