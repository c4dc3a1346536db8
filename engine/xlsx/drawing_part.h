// The drawing of a sheet: a part with one anchor for each picture, chart, shape or group.
//
//   <xdr:wsDr>
//     <xdr:twoCellAnchor editAs="oneCell">        or oneCellAnchor, absoluteAnchor
//       <xdr:from>…</xdr:from> <xdr:to>…</xdr:to>   or from and ext, pos and ext
//       <xdr:pic>…<a:blip r:embed="rId1"/>…</xdr:pic>
//       <xdr:clientData/>
//
// The model has the pictures that stand directly in an anchor, numbered in their order from 1. All
// else is carried: charts, shapes and groups, pictures in groups or among the alternatives of
// compatible markup, and whatever a picture has beside its place.
#pragma once

#include <map>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/anchor.h"
#include "engine/workbook/pictures.h"
#include "engine/xlsx/parts.h"

namespace engine::xlsx {

// The root of a drawing. Throws FileError when the part is something else.
pugi::xml_node drawing_root(const package::XmlTree& tree, std::string_view part);

// Whether a child of the root is an anchor with a numbered picture; all of those.
bool is_picture_anchor(pugi::xml_node node);
std::vector<pugi::xml_node> picture_anchors(pugi::xml_node root);

// Nothing where an anchor says too little.
std::optional<Anchor> read_anchor(pugi::xml_node anchor, const Grid& grid);
// Puts an object elsewhere; the form of its anchor stays.
void change_anchor(pugi::xml_node anchor, const Anchor& now);

// What a picture shows: the name of a part, empty for none, and the path of a link, likewise.
using PictureSource = std::pair<std::string, std::string>;
PictureSource source_of(pugi::xml_node blip, const Parts& parts, std::string_view drawing);
// What the picture in an anchor is filled with.
pugi::xml_node blip_of(pugi::xml_node anchor);

// The pictures of the file, with their places in the book's list.
struct StoredPictures {
  std::vector<PictureSource> sources;
  std::map<PictureSource, std::uint32_t> numbers;

  void add(PictureSource source);
};

// What the file shows of a sheet whose drawing this is; those that lead nowhere are left out.
PlacedPictures read_pictures(pugi::xml_node root, const Parts& parts, std::string_view drawing,
                             const StoredPictures& stored, const Grid& grid);

// A drawing without objects, of the family of namespaces that a sheet is of.
std::string empty_drawing(pugi::xml_node sheet);

// Puts pictures on top of what a drawing has.
class PictureAppender {
 public:
  explicit PictureAppender(pugi::xml_node root);

  // A picture, of so many pixels, by the relationships of its bytes and of its link, either of
  // which may be empty.
  void append(const Anchor& anchor, std::pair<int, int> size, std::string_view embed,
              std::string_view link);

 private:
  unsigned free_id();

  pugi::xml_node root_;
  std::string prefix_;      // of the drawing's own elements, with its colon
  std::set<unsigned> ids_;  // that the drawing came with
  unsigned id_ = 1;         // the last one given
  unsigned name_ = 0;       // the highest number of a "Picture 1"
};

// The pictures of a drawing and nothing else, for a copy of its sheet. Charts, shapes and groups
// have parts and names of their own. The numbers of the pictures stay.
struct CopiedDrawing {
  std::string bytes;
  Ids ids;  // of the relationships that the pictures need
};

// Nothing when the drawing has no picture. Throws FileError when it is damaged.
std::optional<CopiedDrawing> copy_pictures(std::string_view bytes, std::string_view part);

}  // namespace engine::xlsx
