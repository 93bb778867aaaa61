/* A plain C host, written the way a host in any language binds to the component: it loads the
 * shared library named on the command line, asks DllGetClassObject for the class factory,
 * creates a CRepoter, and calls it by vtable position, through IDispatch and through the C
 * interface of vantorel.h. Every failed check prints a line; the exit status is the verdict. */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "vantorel/automation.h"
#include "vantorel/crepoter_abi.h"
#include "vantorel/vantorel.h"

static int failures = 0;

#define CHECK(condition, ...)                                                 \
  do {                                                                        \
    if (!(condition)) {                                                       \
      fprintf(stderr, "c_host:%d: check failed: %s: ", __LINE__, #condition); \
      fprintf(stderr, __VA_ARGS__);                                           \
      fputc('\n', stderr);                                                    \
      ++failures;                                                             \
    }                                                                         \
  } while (0)

/* What the host takes from the library, found by name as a loader finds them. */
static struct {
  PFN_DllGetClassObject get_class_object;
  PFN_DllCanUnloadNow can_unload_now;
  PFN_DllRegisterServer register_server;
  PFN_DllUnregisterServer unregister_server;
  BSTR (*alloc_string)(const OLECHAR*);
  void (*free_string)(BSTR);
  HRESULT (*get_error_info)(ULONG, IErrorInfo**);
  void (*variant_init)(VARIANTARG*);
  HRESULT (*variant_clear)(VARIANTARG*);
  vantorel_repoter* (*create)(void);
  void (*destroy)(vantorel_repoter*);
  int32_t (*set_property)(vantorel_repoter*, const char*, const vantorel_value*);
  int32_t (*get_property)(vantorel_repoter*, const char*, vantorel_value*);
  int32_t (*invoke)(vantorel_repoter*, const char*, const vantorel_value*, int);
  int32_t (*last_error_number)(const vantorel_repoter*);
  const char* (*last_error_text)(const vantorel_repoter*);
  void (*set_message_box_handler)(void (*)(void*, const char*, int), void*);
} lib;

/* Stores the address of symbol "name" in the function pointer at "target". */
static int Find(void* handle, const char* name, void* target, size_t size) {
  void* symbol = dlsym(handle, name);
  if (symbol == NULL) {
    fprintf(stderr, "c_host: the library does not export %s\n", name);
    return 0;
  }
  memcpy(target, &symbol, size);
  return 1;
}
#define FIND(field, name) Find(handle, name, &lib.field, sizeof lib.field)

static int LoadLibrary(void* handle) {
  return FIND(get_class_object, "DllGetClassObject") & FIND(can_unload_now, "DllCanUnloadNow") &
         FIND(register_server, "DllRegisterServer") &
         FIND(unregister_server, "DllUnregisterServer") & FIND(alloc_string, "SysAllocString") &
         FIND(free_string, "SysFreeString") & FIND(get_error_info, "GetErrorInfo") &
         FIND(variant_init, "VariantInit") & FIND(variant_clear, "VariantClear") &
         FIND(create, "vantorel_create") & FIND(destroy, "vantorel_destroy") &
         FIND(set_property, "vantorel_set_property") & FIND(get_property, "vantorel_get_property") &
         FIND(invoke, "vantorel_invoke") & FIND(last_error_number, "vantorel_last_error_number") &
         FIND(last_error_text, "vantorel_last_error_text") &
         FIND(set_message_box_handler, "vantorel_set_message_box_handler");
}

/* A BSTR as ASCII for messages and searches; other characters become '?'. */
static void Narrow(BSTR text, char* out, size_t size) {
  size_t i = 0;
  for (; text != NULL && text[i] != 0 && i + 1 < size; ++i) {
    out[i] = text[i] < 128 ? (char)text[i] : '?';
  }
  out[i] = '\0';
}

static BSTR Wide(const char* ascii) {
  OLECHAR buffer[512];
  size_t i = 0;
  for (; ascii[i] != '\0' && i + 1 < sizeof buffer / sizeof buffer[0]; ++i) {
    buffer[i] = (OLECHAR)(unsigned char)ascii[i];
  }
  buffer[i] = 0;
  return lib.alloc_string(buffer);
}

/* The thread's error info: its description (and source) in ASCII, or "" when there is none. */
static void TakeErrorInfo(char* description, char* source, size_t size) {
  IErrorInfo* info = NULL;
  description[0] = source[0] = '\0';
  if (lib.get_error_info(0, &info) != S_OK || info == NULL) return;
  BSTR text = NULL;
  if (info->lpVtbl->GetDescription(info, &text) == S_OK) Narrow(text, description, size);
  lib.free_string(text);
  text = NULL;
  if (info->lpVtbl->GetSource(info, &text) == S_OK) Narrow(text, source, size);
  lib.free_string(text);
  info->lpVtbl->Release(info);
}

struct Boxes {
  int count;
  char last[512];
};

static void RecordBox(void* user, const char* text, int icon) {
  struct Boxes* boxes = (struct Boxes*)user;
  ++boxes->count;
  snprintf(boxes->last, sizeof boxes->last, "%s", text);
  (void)icon;
}

static int ReadWholeFile(const char* path, char* out, size_t size) {
  FILE* file = fopen(path, "rb");
  if (file == NULL) return 0;
  const size_t n = fread(out, 1, size - 1, file);
  out[n] = '\0';
  fclose(file);
  return 1;
}

static void EarlyBound(_CRepoter* rep, struct Boxes* boxes) {
  const _CRepoterVtbl* vt = rep->lpVtbl;
  char description[512], source[512], text[512];

  BSTR folder = Wide("/tmp/");
  CHECK(vt->put_ReportPath(rep, folder) == S_OK, "put_ReportPath");
  BSTR back = NULL;
  CHECK(vt->get_ReportPath(rep, &back) == S_OK, "get_ReportPath");
  Narrow(back, text, sizeof text);
  CHECK(strcmp(text, "/tmp/") == 0, "ReportPath reads back \"%s\"", text);
  lib.free_string(back);
  BSTR name = Wide("challancus");
  CHECK(vt->put_RptName(rep, name) == S_OK, "put_RptName");
  CHECK(vt->put_FirmID(rep, 7) == S_OK, "put_FirmID");
  CHECK(vt->put_DesigbeMode(rep, 1) == S_OK, "put_DesigbeMode");
  VARIANT_BOOL mode = 0;
  CHECK(vt->get_DesigbeMode(rep, &mode) == S_OK && mode == 1, "DesigbeMode reads back %d", mode);
  CHECK(vt->put_DesigbeMode(rep, VARIANT_FALSE) == S_OK, "put_DesigbeMode");
  CHECK(vt->SetVars(rep) == S_OK, "SetVars");

  CHECK(vt->SuperReport(rep, NULL) == S_OK, "SuperReport with no name does nothing");
  CHECK(boxes->count == 0, "no message box yet, got %d", boxes->count);
  BSTR missing = Wide("vantorel-c-host-missing");
  CHECK(vt->SuperReport(rep, missing) == S_OK, "SuperReport of a missing template");
  CHECK(boxes->count == 1 && strstr(boxes->last, "vantorel-c-host-missing.fr3") != NULL,
        "a message box names the missing template (%d: %s)", boxes->count, boxes->last);

  /* The last entry, by name in the table and by its raw position. */
  short id = 0;
  double amount = 0;
  VARIANT_BOOL debit_note = VARIANT_FALSE;
  BSTR logo = Wide("");
  HRESULT (*last)(_CRepoter*, short*, double*, VARIANT_BOOL*, BSTR*) = NULL;
  memcpy(&last, (const char*)vt + 130 * sizeof(void*), sizeof last);
  CHECK(last == vt->Apro_WsPrintPurRet, "entry 130 is Apro_WsPrintPurRet");
  HRESULT hr = last(rep, &id, &amount, &debit_note, &logo);
  TakeErrorInfo(description, source, sizeof description);
  CHECK(hr == S_OK || strstr(description, "Apro_WsPrintPurRet") != NULL,
        "the last entry reached Apro_WsPrintPurRet (0x%08x: %s)", (unsigned)hr, description);
  if (hr != S_OK) {
    CHECK(strcmp(source, "Vantorel.CRepoter") == 0, "error source \"%s\"", source);
  }
  CHECK(id == 0 && amount == 0 && debit_note == VARIANT_FALSE, "by-reference arguments kept");

  /* A failure of the binary interface itself, read back through the error info. */
  CHECK(vt->get_LastMsg(rep, NULL) == E_POINTER, "a null result pointer is refused");
  TakeErrorInfo(description, source, sizeof description);
  CHECK(strstr(description, "LastMsg") != NULL, "error info names LastMsg: %s", description);

  lib.free_string(folder);
  lib.free_string(name);
  lib.free_string(missing);
  lib.free_string(logo);
}

static void LateBound(_CRepoter* rep) {
  IDispatch* dispatch = NULL;
  char text[512];
  CHECK(rep->lpVtbl->QueryInterface(rep, &IID_IDispatch, (void**)&dispatch) == S_OK,
        "QueryInterface IDispatch");
  if (dispatch == NULL) return;

  OLECHAR* names[] = {(OLECHAR*)u"rptname"};
  DISPID id = 0;
  CHECK(dispatch->lpVtbl->GetIDsOfNames(dispatch, &IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id) ==
                S_OK &&
            id == 0x40030009,
        "RptName is 0x40030009, got 0x%08x", (unsigned)id);

  DISPPARAMS none = {NULL, NULL, 0, 0};
  VARIANT result;
  lib.variant_init(&result);
  CHECK(dispatch->lpVtbl->Invoke(dispatch, 0x4003000F, &IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                 &result, NULL, NULL) == S_OK,
        "get FirmID by dispatch identifier");
  CHECK(V_VT(&result) == VT_UI1 && V_UI1(&result) == 7, "FirmID is VT_UI1 7");
  CHECK(dispatch->lpVtbl->Invoke(dispatch, 0x40030009, &IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                 &result, NULL, NULL) == S_OK,
        "get RptName by dispatch identifier");
  CHECK(V_VT(&result) == VT_BSTR, "RptName is VT_BSTR");
  Narrow(V_BSTR(&result), text, sizeof text);
  CHECK(strcmp(text, "challancus") == 0, "RptName reads back \"%s\"", text);
  lib.variant_clear(&result);

  /* Apro_WsPrintPurRet(mPu_id, Amt, isDN, LogoFile): rgvarg holds them last to first. */
  VARIANT args[4];
  for (int i = 0; i < 4; ++i) lib.variant_init(&args[i]);
  V_VT(&args[0]) = VT_BSTR;
  V_BSTR(&args[0]) = Wide("");
  V_VT(&args[1]) = VT_BOOL;
  V_BOOL(&args[1]) = VARIANT_FALSE;
  V_VT(&args[2]) = VT_R8;
  V_R8(&args[2]) = 0;
  V_VT(&args[3]) = VT_I2;
  V_I2(&args[3]) = 0;
  DISPPARAMS params = {args, NULL, 4, 0};
  EXCEPINFO info;
  memset(&info, 0, sizeof info);
  UINT arg_err = 0;
  HRESULT hr = dispatch->lpVtbl->Invoke(dispatch, 0x60030066, &IID_NULL, 0, DISPATCH_METHOD,
                                        &params, NULL, &info, &arg_err);
  Narrow(info.bstrDescription, text, sizeof text);
  CHECK(hr == S_OK || (hr == DISP_E_EXCEPTION && strstr(text, "Apro_WsPrintPurRet") != NULL),
        "0x60030066 reached Apro_WsPrintPurRet (0x%08x: %s)", (unsigned)hr, text);
  lib.free_string(info.bstrSource);
  lib.free_string(info.bstrDescription);
  lib.free_string(info.bstrHelpFile);
  lib.variant_clear(&args[0]);

  CHECK(dispatch->lpVtbl->Invoke(dispatch, 0x60030002, &IID_NULL, 0, DISPATCH_METHOD, &none, NULL,
                                 NULL, NULL) == DISP_E_MEMBERNOTFOUND,
        "0x60030002 belongs to nothing");
  dispatch->lpVtbl->Release(dispatch);
}

static void CInterface(void) {
  vantorel_repoter* r = lib.create();
  CHECK(r != NULL, "vantorel_create");
  if (r == NULL) return;
  vantorel_value value;
  memset(&value, 0, sizeof value);
  value.type = VANTOREL_STRING;
  value.str = "/srv/dms/reports/";
  CHECK(lib.set_property(r, "ReportPath", &value) == 0, "set ReportPath");
  vantorel_value out;
  CHECK(lib.get_property(r, "REPORTPATH", &out) == 0 && out.type == VANTOREL_STRING &&
            strcmp(out.str, "/srv/dms/reports/") == 0,
        "ReportPath reads back");
  CHECK(lib.invoke(r, "SetVars", NULL, 0) == 0, "SetVars");

  vantorel_value args[2];
  memset(args, 0, sizeof args);
  args[0].type = VANTOREL_I2;
  args[0].i2 = 0;
  args[1].type = VANTOREL_UI1;
  args[1].ui1 = 2;
  int32_t status = lib.invoke(r, "VehSticker", args, 2);
  CHECK(status == 0 || strstr(lib.last_error_text(r), "VehSticker") != NULL,
        "VehSticker reached (0x%08x: %s)", (unsigned)status, lib.last_error_text(r));

  args[0].type = VANTOREL_STRING;
  args[0].str = "twelve";
  CHECK(lib.invoke(r, "ReceiptPrint", args, 1) == DISP_E_TYPEMISMATCH, "type mismatch");
  CHECK(lib.last_error_number(r) == DISP_E_TYPEMISMATCH && lib.last_error_text(r)[0] != '\0',
        "last error after a mismatch: %d %s", lib.last_error_number(r), lib.last_error_text(r));
  CHECK(lib.invoke(r, "NoSuchMethod", NULL, 0) == DISP_E_UNKNOWNNAME, "unknown name");
  lib.destroy(r);
}

static void SelfRegistration(const char* library) {
  char folder[] = "/tmp/vantorel-c-host-XXXXXX";
  if (mkdtemp(folder) == NULL) {
    CHECK(0, "cannot make a temporary folder");
    return;
  }
  char file[512], contents[8192];
  snprintf(file, sizeof file, "%s/registry.json", folder);
  setenv("VANTOREL_REGISTRY", file, 1);
  CHECK(lib.register_server() == S_OK, "DllRegisterServer");
  CHECK(ReadWholeFile(file, contents, sizeof contents) && strstr(contents, library) != NULL &&
            strstr(contents, "Vantorel.CRepoter") != NULL,
        "the registry file names the library: %s", contents);
  CHECK(lib.unregister_server() == S_OK, "DllUnregisterServer");
  CHECK(ReadWholeFile(file, contents, sizeof contents) && strstr(contents, library) == NULL,
        "unregistered: %s", contents);
  unlink(file);
  rmdir(folder);
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: c_host /path/to/libvantorel.so\n");
    return 2;
  }
  void* handle = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (handle == NULL) {
    fprintf(stderr, "c_host: %s\n", dlerror());
    return 1;
  }
  if (!LoadLibrary(handle)) return 1;

  struct Boxes boxes = {0, ""};
  lib.set_message_box_handler(RecordBox, &boxes);
  CHECK(lib.can_unload_now() == S_OK, "nothing in use at the start");

  void* out = &out;
  CHECK(
      lib.get_class_object(&IID_IDispatch, &IID_IClassFactory, &out) == CLASS_E_CLASSNOTAVAILABLE &&
          out == NULL,
      "only our class is served");
  IClassFactory* factory = NULL;
  CHECK(lib.get_class_object(&CLSID_CRepoter, &IID_IClassFactory, (void**)&factory) == S_OK,
        "DllGetClassObject");
  if (factory == NULL) return 1;
  IUnknown* unknown = NULL;
  CHECK(factory->lpVtbl->CreateInstance(factory, NULL, &IID_IUnknown, (void**)&unknown) == S_OK,
        "CreateInstance");
  factory->lpVtbl->Release(factory);
  if (unknown == NULL) return 1;
  _CRepoter* rep = NULL;
  CHECK(unknown->lpVtbl->QueryInterface(unknown, &IID__CRepoter, (void**)&rep) == S_OK,
        "QueryInterface _CRepoter");
  unknown->lpVtbl->Release(unknown);
  if (rep == NULL) return 1;
  CHECK(lib.can_unload_now() == S_FALSE, "an object is alive");

  EarlyBound(rep, &boxes);
  LateBound(rep);
  CHECK(rep->lpVtbl->Release(rep) == 0, "the last reference");
  CHECK(lib.can_unload_now() == S_OK, "everything released");

  CInterface();
  SelfRegistration(argv[1]);

  lib.set_message_box_handler(NULL, NULL);
  dlclose(handle);
  if (failures != 0) {
    fprintf(stderr, "c_host: %d checks failed\n", failures);
    return 1;
  }
  puts("c_host: all checks passed");
  return 0;
}
