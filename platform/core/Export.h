// SPDX-License-Identifier: Apache-2.0
// Export.h - KIVPLR_API, the mark on what libkivplr exports.
//
// The library is compiled with hidden visibility: a class, function or
// constant leaves the shared object only when its declaration in a public
// header carries KIVPLR_API. Interfaces carry it too, so that their type
// information is one object in every program and library that uses them
// (dynamic_cast, the sanitizers' type checks). Helpers of the library's own
// sources carry no mark and stay inside it. The mark goes between a class's
// keyword and its name (class KIVPLR_API PosixLock), in front of a function
// (KIVPLR_API void Trim(std::string& text)) and after the extern of a
// constant (extern KIVPLR_API const Uuid PlatformInterfaceId).
//
// Example (namespace scope):
//   #include <string>
//   class KIVPLR_API Exported
//   {
//   public:
//       void Run();
//   };
//   KIVPLR_API void TrimBoth(std::string& text);
//   extern KIVPLR_API const Uuid ExportedInterfaceId;
//
// The same mark serves the library's build and a program that includes the
// header: on ELF, exporting and importing a symbol are one visibility.
#ifndef KIVPLR_EXPORT_H
#define KIVPLR_EXPORT_H

#define KIVPLR_API __attribute__((visibility("default")))

#endif
