// Pictures.
#include "tests/walk/walk.h"

namespace walk {

namespace {

constexpr Case kPictures[] = {
    {"XL_Book_PictureSize ( $book ) & XL_Sheet_PictureSize ( $sheet )", "00"},
    {"XL_Book_AddPicture ( $book ; \"30x20.png\" )", "0"},
    {"XL_Book_AddPicture2 ( $book ; Host_ReadFile ( \"40x10.png\" ) )", "1"},
    {"XL_Book_AddPictureAsLink ( $book ; \"30x20.png\" )", "2"},
    {"XL_Book_AddPicture ( $book ; \"none.png\" )",
     "? 1 file \"none.png\" cannot be opened: no such file"},
    {"XL_Book_AddPicture ( $book ; \"\" )", "? 1 file name is empty"},
    {"XL_Book_AddPicture2 ( $book ; \"no picture\" )",
     "? 1 the picture data is not a known picture format"},
    {"XL_Book_AddPicture2 ( $book ; \"\" )", "? 1 picture data is empty"},
    {"XL_Book_AddPictureAsLink ( $book ; \"none.png\" ; 1 )",
     "? 1 file \"none.png\" cannot be opened: no such file"},
    {"XL_Book_PictureSize ( $book )", "3"},
    {"XL_Book_GetPicture ( $book ; 2 )", "? 1 picture 2 is a link without data"},
    {"XL_Book_GetPicture ( $book ; 3 )", "? 1 picture 3 is out of range 0..2"},
    // The name is the position.
    {"$png = XL_Book_GetPicture ( $book ; 1 ; \"name\" )", "1.png", kSame},
    {"Host_Streams ( $png )", "FNAM 5¶PNGf 83", kSame},
    {"Host_Streams ( XL_Book_GetPicture ( $book ; 0 ) )", "FNAM 5¶PNGf 88", kSame},
    // On the sheet.
    {"XL_Sheet_SetPicture ( $sheet ; 2 ; 1 ; 0 ; 1 ; 3 ; 5 )", ""},
    {"XL_Sheet_SetPicture ( $sheet ; 5 ; 1 ; 1 ; 1.5 ; 3 ; 1 ; XL_PositionMoveOnly )", ""},
    {"XL_Sheet_SetPicture2 ( $sheet ; 10 ; 2 ; 0 ; 90 ; -1 ; 0 ; 1 ; XL_PositionFree )", ""},
    {"XL_Sheet_SetPicture ( $sheet ; 0 ; 0 ; 9 )", "? 1 picture 9 is out of range 0..2"},
    {"XL_Sheet_SetPicture ( $sheet ; 0 ; 0 ; 0 ; 1 ; -1 )",
     "? 1 offset x -1 is out of range: it must be at least 0"},
    {"XL_Sheet_SetPicture2 ( $sheet ; 0 ; 0 ; 0 ; 1 ; 1 ; 0 ; 0 ; 3 )",
     "? 1 position 3 is not known"},
    {"XL_Sheet_PictureSize ( $sheet )", "3", kSame},
    {"XL_Sheet_GetPicture ( $sheet ; 0 )", "0¶2¶1¶3¶1¶30¶20¶3¶5", kSame},
    {"XL_Sheet_GetPicture ( $sheet ; 1 )", "1¶5¶1¶5¶1¶60¶15¶3¶1", kSame},
    {"XL_Sheet_GetPicture ( $sheet ; 2 )", "0¶10¶2¶13¶3¶90¶60¶0¶1", kSame},
    {"XL_Sheet_GetPicture ( $sheet ; 3 )", "? 1 picture 3 is out of range 0..2", kSame},
    // What no sheet shows is not in the file.
    {"XL_Book_PictureSize ( $book )", "3", "2"},
};

}  // namespace

Group pictures() { return {"pictures", kPictures}; }

}  // namespace walk
