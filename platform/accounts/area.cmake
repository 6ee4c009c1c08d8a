# SPDX-License-Identifier: Apache-2.0
# Accounts: PAM for authentication and password changes, libcrypt for the
# password hash that useradd is given. Only their headers are needed: User
# loads libpam.so.0 and libcrypt.so.1 on first use (User.cpp says why), so
# that programs that never touch an account map neither. Looked up through
# the find root so that the armhf lane sees the sysroot's headers.
find_path(KIV_PAM_INCLUDE_DIR security/pam_appl.h REQUIRED)
find_path(KIV_CRYPT_INCLUDE_DIR crypt.h REQUIRED)
target_include_directories(kivplr SYSTEM PRIVATE ${KIV_PAM_INCLUDE_DIR} ${KIV_CRYPT_INCLUDE_DIR})
# dlopen and dlsym come from the C library itself (glibc 2.34 and later).
# The PAM conversation (kivplr_internal) needs PAM's types, not the library.
target_include_directories(kivplr_internal SYSTEM PRIVATE ${KIV_PAM_INCLUDE_DIR})
