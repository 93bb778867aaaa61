// Marks the symbols the shared library exports; everything else is hidden.
#ifndef VANTOREL_EXPORT_H_
#define VANTOREL_EXPORT_H_

#if defined(_WIN32)
#define VANTOREL_EXPORT __declspec(dllexport)
#else
#define VANTOREL_EXPORT __attribute__((visibility("default")))
#endif

#endif  // VANTOREL_EXPORT_H_
