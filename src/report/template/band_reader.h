// Reads the body of a report: bands with their child bands and objects (texts, pictures,
// barcodes, lines, rectangles and uses of parts), data bands with their headers, footers, groups
// and detail bands. Whether a text is rich decides how its content is read, so the reader knows
// which styles make texts rich.
//
// Thread-safety: belongs to one reader.
#ifndef VANTOREL_REPORT_TEMPLATE_BAND_READER_H_
#define VANTOREL_REPORT_TEMPLATE_BAND_READER_H_

#include <pugixml.hpp>

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "report/template/attribute_reader.h"
#include "report/template/design.h"
#include "report/template/xml_source.h"

namespace vantorel::report {

class BandReader {
 public:
  BandReader(XmlSource& source, AttributeReader& attributes)
      : source_(source), attributes_(attributes) {}

  // Style "name", based on "based_on", makes its texts rich or plain ("rich"), or leaves that to
  // its base (nullopt).
  void KnowStyle(const std::string& name, const std::string& based_on, std::optional<bool> rich);

  // The object "node" describes; nullopt when it is not an object element.
  std::optional<DesignObject> ReadObject(const pugi::xml_node& node);

  // A band's attributes and objects; "extra" are the child elements the caller reads itself.
  Band ReadBand(const pugi::xml_node& node, BandKind kind,
                std::initializer_list<const char*> extra = {});

  // A <data> with its headers, footers, groups and detail bands.
  DataBand ReadData(const pugi::xml_node& node);

 private:
  Group ReadGroup(const pugi::xml_node& node);
  void ReadCommon(const pugi::xml_node& node, ObjectCommon& object);
  TextObject ReadText(const pugi::xml_node& node);
  PictureObject ReadPicture(const pugi::xml_node& node);
  BarcodeObject ReadBarcode(const pugi::xml_node& node);
  LineObject ReadLine(const pugi::xml_node& node);
  PartUse ReadUse(const pugi::xml_node& node);
  RectObject ReadRect(const pugi::xml_node& node);
  bool IsRich(const pugi::xml_node& node) const;

  XmlSource& source_;
  AttributeReader& attributes_;
  // Each style's based-on and own "rich".
  std::map<std::string, std::pair<std::string, std::optional<bool>>> style_rich_;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_BAND_READER_H_
