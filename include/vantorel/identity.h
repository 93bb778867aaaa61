/* The identity of the component: generated once and never changed, so that registered hosts keep
 * binding to it. The one place these values are written. */
#ifndef VANTOREL_IDENTITY_H_
#define VANTOREL_IDENTITY_H_

#define VANTOREL_PROGID "Vantorel.CRepoter"
#define VANTOREL_TYPELIB_NAME "Vantorel"
#define VANTOREL_CLSID_TEXT "{4147DE95-3106-42FB-B4ED-74A90FFAA307}"
#define VANTOREL_IID_TEXT "{40B895B6-9A5C-4338-939C-1AB7DA3DF08F}"
#define VANTOREL_LIBID_TEXT "{54282C08-F574-414D-AC67-623023CE1CF5}"

/* The same identifiers as GUID initialisers: {Data1, Data2, Data3, {Data4}}. */
#define VANTOREL_CLSID_INIT                                                        \
  {                                                                                \
    0x4147DE95, 0x3106, 0x42FB, { 0xB4, 0xED, 0x74, 0xA9, 0x0F, 0xFA, 0xA3, 0x07 } \
  }
#define VANTOREL_IID_INIT                                                          \
  {                                                                                \
    0x40B895B6, 0x9A5C, 0x4338, { 0x93, 0x9C, 0x1A, 0xB7, 0xDA, 0x3D, 0xF0, 0x8F } \
  }
#define VANTOREL_LIBID_INIT                                                        \
  {                                                                                \
    0x54282C08, 0xF574, 0x414D, { 0xAC, 0x67, 0x62, 0x30, 0x23, 0xCE, 0x1C, 0xF5 } \
  }

#endif /* VANTOREL_IDENTITY_H_ */
