// Registration of the component on Linux, where there is no system registry: a JSON file that
// maps the class identifier, the programmatic identifier, the interface and the type library to
// the library that serves them, as the registry does on Windows. A host that binds by
// programmatic identifier reads the file, loads the library and asks DllGetClassObject for the
// class factory.
//
// The per-user file is $VANTOREL_REGISTRY when set, else $XDG_CONFIG_HOME/vantorel/registry.json,
// else ~/.config/vantorel/registry.json. The system-wide file is /etc/vantorel/registry.json
// ($VANTOREL_SYSTEM_REGISTRY when set, for packaging into a staging tree). The format is in
// docs/integration.md.
//
// Thread-safety: callers on different threads and processes may register and unregister at the
// same time; updates of one file are serialised by a lock on its folder and written atomically.
#ifndef VANTOREL_COMPONENT_REGISTRATION_H_
#define VANTOREL_COMPONENT_REGISTRATION_H_

#include <optional>
#include <string>
#include <string_view>

namespace vantorel {

enum class RegistryScope { kUser, kSystem };

// The registry file of "scope".
std::string RegistryPath(RegistryScope scope);

// The file of the library this code was loaded from (the shared library for a host, the program
// itself when linked statically), as an absolute path.
std::string ComponentLibraryPath();

// The library that registration records for hosts to load: this code's own file when it is the
// shared library; from a statically linked program (the command-line tool) the shared library
// the dynamic loader finds by its soname, libvantorel.so.1, or the program itself when there is
// none.
std::string LibraryToRegister();

// Adds the component's entries to the registry file of "scope", naming LibraryToRegister() as
// the server, and creates the file and its folder when needed. Entries of other components stay
// as they are; registering again changes nothing. Throws vantorel::Error when the file cannot be
// read, is not a registry, or cannot be written.
void Register(RegistryScope scope);

// Removes the component's entries from the registry file of "scope" and nothing else. A missing
// file is not an error. Throws vantorel::Error as Register does.
void Unregister(RegistryScope scope);

// The library registered for "progid_or_clsid" (a programmatic identifier, or a class identifier
// in braces, matched without regard to case): the per-user file first, then the system-wide one.
// nullopt when neither has it; a file that cannot be read counts as having nothing.
std::optional<std::string> LookupLibrary(std::string_view progid_or_clsid);

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_REGISTRATION_H_
