// The spreadsheet library's interface: six abstract classes, their enumerations, two factories.
//
// A book owns every sheet, format, font, text and buffer it hands out; nothing is freed by the
// caller but the book itself, by release(). The same sheet, format, font, auto-filter or filter
// column is always the same pointer. An object that has left its book (a deleted sheet, the
// contents before a load) may still be called and refuses everything.
//
// Rows, columns, indices and positions count from 0; ranges include both ends. Texts are wide,
// zero-terminated, one element per UTF-16 code unit; a text handed out is valid until the next
// operation on any object of its book. A null output pointer is allowed and is not written.
//
// Every operation but errorMessage() and release() first sets the book's message to "ok". A refused
// operation sets a message that names the cause, changes nothing, writes no output and returns its
// failure value: false, null, 0 for sizes, -1 for ids and positions, the default of an enumeration.
// A question whose answer is "none" returns the same with the message "ok". Only std::bad_alloc is
// ever thrown. One book is used by one thread at a time; two books share nothing.
#pragma once

namespace libxl {

// Enumerations are plain ints, because any number of a calculation may be passed; the operation
// checks it.

// A palette index, or at 0x01000000 and above the red, green and blue of the low 24 bits.
enum Color : int {
  ColorBlack = 8,
  ColorWhite,
  ColorRed,
  ColorBrightGreen,
  ColorBlue,
  ColorYellow,
  ColorPink,
  ColorTurquoise,
  ColorDarkRed,
  ColorGreen,
  ColorDarkBlue,
  ColorDarkYellow,
  ColorViolet,
  ColorTeal,
  ColorGray25,
  ColorGray50,
  // CF: the chart fills of the palette.
  ColorPeriwinkleCF,
  ColorPlumCF,
  ColorIvoryCF,
  ColorLightTurquoiseCF,
  ColorDarkPurpleCF,
  ColorCoralCF,
  ColorOceanBlueCF,
  ColorIceBlueCF,
  // CL: the chart lines.
  ColorDarkBlueCL,
  ColorPinkCL,
  ColorYellowCL,
  ColorTurquoiseCL,
  ColorPurpleCL,
  ColorMaroonCL,
  ColorTealCL,
  ColorBlueCL,
  ColorSkyBlue,
  ColorLightTurquoise,
  ColorLightGreen,
  ColorLightYellow,
  ColorPaleBlue,
  ColorRose,
  ColorLavender,
  ColorTan,
  ColorLightBlue,
  ColorAqua,
  ColorLime,
  ColorGold,
  ColorLightOrange,
  ColorOrange,
  ColorBlueGray,
  ColorGray40,
  ColorDarkTeal,
  ColorSeaGreen,
  ColorDarkGreen,
  ColorOliveGreen,
  ColorBrown,
  ColorPlum,
  ColorIndigo,
  ColorGray80,
  // The system's text, window and tool-tip colours.
  ColorDefaultForeground = 64,
  ColorDefaultBackground = 65,
  ColorTooltip = 81,
  ColorAuto = 32767
};

// Ids of the built-in number formats; custom ones follow from 164.
enum NumFormat : int {
  NumGeneral,
  NumInteger,
  NumFixed2,
  NumThousands,
  NumThousands2,
  NumCurrency,
  NumCurrencyRed,
  NumCurrency2,
  NumCurrency2Red,
  NumPercent,
  NumPercent2,
  NumScientific2,
  NumFraction1,
  NumFraction2,
  NumDate,
  NumDateDMY,
  NumDateDM,
  NumDateMY,
  NumTimeAmPm,
  NumTimeSecAmPm,
  NumTime,
  NumTimeSec,
  NumDateTime,
  NumAccount = 37,
  NumAccountRed,
  NumAccount2,
  NumAccount2Red,
  NumAccounting,
  NumAccountingCurrency,
  NumAccounting2,
  NumAccountingCurrency2,
  NumMinSec,
  NumElapsed,
  NumMinSecTenth,
  NumScientific1,
  NumText
};

enum AlignH : int {
  AlignHGeneral,
  AlignHLeft,
  AlignHCenter,
  AlignHRight,
  AlignHFill,
  AlignHJustify,
  AlignHCenterAcross,
  AlignHDistributed
};

enum AlignV : int { AlignVTop, AlignVCenter, AlignVBottom, AlignVJustify, AlignVDistributed };

enum BorderStyle : int {
  BorderNone,
  BorderThin,
  BorderMedium,
  BorderDashed,
  BorderDotted,
  BorderThick,
  BorderDouble,
  BorderHair,
  BorderMediumDashed,
  BorderDashDot,
  BorderMediumDashDot,
  BorderDashDotDot,
  BorderMediumDashDotDot,
  BorderSlantDashDot
};

// Down runs from top left to bottom right.
enum BorderDiagonal : int { DiagonalNone, DiagonalDown, DiagonalUp, DiagonalBoth };

enum FillPattern : int {
  FillNone,
  FillSolid,
  FillGray50,
  FillGray75,
  FillGray25,
  FillDarkHorizontal,
  FillDarkVertical,
  FillDarkDown,
  FillDarkUp,
  FillDarkGrid,
  FillDarkTrellis,
  FillLightHorizontal,
  FillLightVertical,
  FillLightDown,
  FillLightUp,
  FillLightGrid,
  FillLightTrellis,
  FillGray12,
  FillGray6
};

enum Script : int { ScriptNormal, ScriptSuper, ScriptSub };

enum Underline : int {
  UnderlineNone,
  UnderlineSingle,
  UnderlineDouble,
  UnderlineSingleAccounting = 33,
  UnderlineDoubleAccounting = 34
};

// Paper sizes as both file formats number them; R is the size turned by 90 degrees.
enum Paper : int {
  PaperDefault,
  PaperLetter,
  PaperLetterSmall,
  PaperTabloid,
  PaperLedger,
  PaperLegal,
  PaperStatement,
  PaperExecutive,
  PaperA3,
  PaperA4,
  PaperA4Small,
  PaperA5,
  PaperB4,
  PaperB5,
  PaperFolio,
  PaperQuarto,
  Paper10x14,
  Paper11x17,
  PaperNote,
  PaperEnvelope9,
  PaperEnvelope10,
  PaperEnvelope11,
  PaperEnvelope12,
  PaperEnvelope14,
  PaperC,
  PaperD,
  PaperE,
  PaperEnvelopeDL,
  PaperEnvelopeC5,
  PaperEnvelopeC3,
  PaperEnvelopeC4,
  PaperEnvelopeC6,
  PaperEnvelopeC65,
  PaperEnvelopeB4,
  PaperEnvelopeB5,
  PaperEnvelopeB6,
  PaperEnvelopeItaly,
  PaperEnvelopeMonarch,
  PaperEnvelope6_75,
  PaperFanfoldUs,
  PaperFanfoldGerman,
  PaperFanfoldGermanLegal,
  PaperIsoB4,
  PaperPostcard,
  Paper9x11,
  Paper10x11,
  Paper15x11,
  PaperEnvelopeInvite,
  PaperLetterExtra = 50,
  PaperLegalExtra,
  PaperTabloidExtra,
  PaperA4Extra,
  PaperLetterTransverse,
  PaperA4Transverse,
  PaperLetterExtraTransverse,
  PaperSuperA,
  PaperSuperB,
  PaperLetterPlus,
  PaperA4Plus,
  PaperA5Transverse,
  PaperJisB5Transverse,
  PaperA3Extra,
  PaperA5Extra,
  PaperIsoB5Extra,
  PaperA2,
  PaperA3Transverse,
  PaperA3ExtraTransverse,
  PaperDoublePostcard,
  PaperA6,
  PaperKaku2,
  PaperKaku3,
  PaperChou3,
  PaperChou4,
  PaperLetterR,
  PaperA3R,
  PaperA4R,
  PaperA5R,
  PaperJisB4R,
  PaperJisB5R,
  PaperPostcardR,
  PaperDoublePostcardR,
  PaperA6R,
  PaperKaku2R,
  PaperKaku3R,
  PaperChou3R,
  PaperChou4R,
  PaperJisB6,
  PaperJisB6R,
  Paper12x11,
  PaperYou4,
  PaperYou4R,
  PaperPrc16K,
  PaperPrc32K,
  PaperPrc32KBig,
  PaperPrcEnvelope1,
  PaperPrcEnvelope2,
  PaperPrcEnvelope3,
  PaperPrcEnvelope4,
  PaperPrcEnvelope5,
  PaperPrcEnvelope6,
  PaperPrcEnvelope7,
  PaperPrcEnvelope8,
  PaperPrcEnvelope9,
  PaperPrcEnvelope10,
  PaperPrc16KR,
  PaperPrc32KR,
  PaperPrc32KBigR,
  PaperPrcEnvelope1R,
  PaperPrcEnvelope2R,
  PaperPrcEnvelope3R,
  PaperPrcEnvelope4R,
  PaperPrcEnvelope5R,
  PaperPrcEnvelope6R,
  PaperPrcEnvelope7R,
  PaperPrcEnvelope8R,
  PaperPrcEnvelope9R,
  PaperPrcEnvelope10R
};

// Dialog and macro sheets and modules are unknown.
enum SheetType : int { SheetWorksheet, SheetChart, SheetUnknown };

// A formula has the type of its cached value; without one it is blank.
enum CellType : int { CellEmpty, CellNumber, CellText, CellBoolean, CellBlank, CellError };

enum ErrorType : int {
  ErrorNull = 0,
  ErrorDiv0 = 7,
  ErrorValue = 15,
  ErrorRef = 23,
  ErrorName = 29,
  ErrorNum = 36,
  ErrorNA = 42,
  ErrorNone = 255
};

enum PictureType : int {
  PicturePng,
  PictureJpeg,
  PictureGif,
  PictureWmf,
  PictureDib,
  PictureEmf,
  PicturePict,
  PictureTiff,
  PictureError = 255
};

enum SheetState : int { StateVisible, StateHidden, StateVeryHidden };

// 0 and above is the position of the sheet that a name belongs to.
enum Scope : int { ScopeUndefined = -2, ScopeWorkbook = -1 };

// What a picture does when the cells under it move.
enum Position : int { PositionMoveAndSize, PositionMoveOnly, PositionFree };

enum Filter : int {
  FilterValues,
  FilterTop10,
  FilterCustom,
  FilterDynamic,
  FilterColor,
  FilterIcon,
  FilterExtension,
  FilterNone
};

// Comparisons of a custom filter.
enum Operator : int {
  OperatorEqual,
  OperatorLess,
  OperatorLessOrEqual,
  OperatorNotEqual,
  OperatorGreaterOrEqual,
  OperatorGreater
};

// A flag that is set allows the action on a protected sheet; flags are added.
enum EnhancedProtection : int {
  ProtectDefault = -1,
  ProtectAll = 0,
  ProtectObjects = 1,
  ProtectScenarios = 2,
  ProtectFormatCells = 4,
  ProtectFormatColumns = 8,
  ProtectFormatRows = 16,
  ProtectInsertColumns = 32,
  ProtectInsertRows = 64,
  ProtectInsertHyperlinks = 128,
  ProtectDeleteColumns = 256,
  ProtectDeleteRows = 512,
  ProtectSelectLockedCells = 1024,
  ProtectSort = 2048,
  ProtectAutoFilter = 4096,
  ProtectPivotTables = 8192,
  ProtectSelectUnlockedCells = 16384
};

// Warnings that a spreadsheet program shall not show; flags are added.
enum IgnoredError : int {
  IgnoreEvalError = 1,
  IgnoreEmptyCellRef = 2,
  IgnoreNumberAsText = 4,
  IgnoreInconsistentRange = 8,
  IgnoreInconsistentFormula = 16,
  IgnoreTwoDigitYear = 32,
  IgnoreUnlockedFormula = 64,
  IgnoreValidation = 128
};

enum DataValidationType : int {
  ValidationNone,
  ValidationWhole,
  ValidationDecimal,
  ValidationList,
  ValidationDate,
  ValidationTime,
  ValidationTextLength,
  ValidationCustom
};

enum DataValidationOperator : int {
  ValidationBetween,
  ValidationNotBetween,
  ValidationEqual,
  ValidationNotEqual,
  ValidationLess,
  ValidationLessOrEqual,
  ValidationGreater,
  ValidationGreaterOrEqual
};

enum DataValidationErrorStyle : int { ErrorStyleStop, ErrorStyleWarning, ErrorStyleInformation };

// A font of the book's list, live: a change shows in every format that uses it.
class Font {
 public:
  // Points, 1..409.
  virtual int size() const = 0;
  virtual void setSize(int size) = 0;
  virtual bool italic() const = 0;
  virtual void setItalic(bool italic = true) = 0;
  virtual bool strikeOut() const = 0;
  virtual void setStrikeOut(bool strikeOut = true) = 0;
  virtual Color color() const = 0;
  virtual void setColor(Color color) = 0;
  virtual bool bold() const = 0;
  virtual void setBold(bool bold = true) = 0;
  virtual Script script() const = 0;
  virtual void setScript(Script script) = 0;
  virtual Underline underline() const = 0;
  virtual void setUnderline(Underline underline) = 0;
  virtual const wchar_t* name() const = 0;
  // False, with the message "ok", when the name is empty or longer than 31 characters.
  virtual bool setName(const wchar_t* name) = 0;

 protected:
  ~Font() = default;
};

// A cell format of the book's list, live: a change shows in every cell that carries it.
class Format {
 public:
  // Never null; shared with every other format that uses it. setFont(nullptr) is the default font.
  virtual Font* font() const = 0;
  virtual bool setFont(Font* font) = 0;
  // A built-in id of 0..49 or a custom id of the book.
  virtual int numFormat() const = 0;
  virtual void setNumFormat(int numFormat) = 0;
  virtual AlignH alignH() const = 0;
  virtual void setAlignH(AlignH align) = 0;
  virtual AlignV alignV() const = 0;
  virtual void setAlignV(AlignV align) = 0;
  virtual bool wrap() const = 0;
  virtual void setWrap(bool wrap = true) = 0;
  // Degrees upwards 0..90, downwards 91..180 (also given as -1..-90), 255 stacked. Other values
  // return false with the message "ok".
  virtual int rotation() const = 0;
  virtual bool setRotation(int rotation) = 0;
  // Steps of three spaces.
  virtual int indent() const = 0;
  virtual void setIndent(int indent) = 0;
  virtual bool shrinkToFit() const = 0;
  virtual void setShrinkToFit(bool shrinkToFit = true) = 0;
  // All four sides, not the diagonal.
  virtual void setBorder(BorderStyle style = BorderThin) = 0;
  virtual void setBorderColor(Color color) = 0;
  virtual BorderStyle borderLeft() const = 0;
  virtual void setBorderLeft(BorderStyle style = BorderThin) = 0;
  virtual BorderStyle borderRight() const = 0;
  virtual void setBorderRight(BorderStyle style = BorderThin) = 0;
  virtual BorderStyle borderTop() const = 0;
  virtual void setBorderTop(BorderStyle style = BorderThin) = 0;
  virtual BorderStyle borderBottom() const = 0;
  virtual void setBorderBottom(BorderStyle style = BorderThin) = 0;
  virtual Color borderLeftColor() const = 0;
  virtual void setBorderLeftColor(Color color) = 0;
  virtual Color borderRightColor() const = 0;
  virtual void setBorderRightColor(Color color) = 0;
  virtual Color borderTopColor() const = 0;
  virtual void setBorderTopColor(Color color) = 0;
  virtual Color borderBottomColor() const = 0;
  virtual void setBorderBottomColor(Color color) = 0;
  // A diagonal without a style gets a thin line.
  virtual BorderDiagonal borderDiagonal() const = 0;
  virtual void setBorderDiagonal(BorderDiagonal border) = 0;
  virtual BorderStyle borderDiagonalStyle() const = 0;
  virtual void setBorderDiagonalStyle(BorderStyle style) = 0;
  virtual Color borderDiagonalColor() const = 0;
  virtual void setBorderDiagonalColor(Color color) = 0;
  // The foreground is the cell's colour when the pattern is solid; setting it sets no pattern.
  virtual FillPattern fillPattern() const = 0;
  virtual void setFillPattern(FillPattern pattern) = 0;
  virtual Color patternForegroundColor() const = 0;
  virtual void setPatternForegroundColor(Color color) = 0;
  virtual Color patternBackgroundColor() const = 0;
  virtual void setPatternBackgroundColor(Color color) = 0;
  // Both count on a protected sheet only; hidden hides the formula.
  virtual bool locked() const = 0;
  virtual void setLocked(bool locked = true) = 0;
  virtual bool hidden() const = 0;
  virtual void setHidden(bool hidden = true) = 0;

 protected:
  ~Format() = default;
};

// The criterion of one column of an auto-filter.
class FilterColumn {
 public:
  // Position in the filter's range.
  virtual int index() const = 0;
  virtual Filter filterType() const = 0;
  // Values to show; the empty text stands for blank cells and comes last.
  virtual int filterSize() const = 0;
  virtual const wchar_t* filter(int index) const = 0;
  virtual void addFilter(const wchar_t* value) = 0;
  // A number of items 1..500, or a percentage 1..100.
  virtual bool getTop10(double* value, bool* top, bool* percent) = 0;
  virtual void setTop10(double value, bool top = true, bool percent = false) = 0;
  // One or two conditions; v2 null, or empty with equal: one.
  virtual bool getCustomFilter(Operator* op1, const wchar_t** v1, Operator* op2, const wchar_t** v2,
                               bool* andOp) const = 0;
  virtual void setCustomFilter(Operator op1, const wchar_t* v1, Operator op2 = OperatorEqual,
                               const wchar_t* v2 = nullptr, bool andOp = false) = 0;
  // Removes the criterion; rows change with the next Sheet::applyFilter.
  virtual void clear() = 0;

 protected:
  ~FilterColumn() = default;
};

// The filter of a sheet: a range with its header row first, criteria by column, one sort.
class AutoFilter {
 public:
  virtual bool getRef(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const = 0;
  virtual void setRef(int rowFirst, int rowLast, int colFirst, int colLast) = 0;
  // The column at a position of the range; made on first use, without criterion.
  virtual FilterColumn* column(int colId) = 0;
  // Only the columns that have a criterion.
  virtual int columnSize() const = 0;
  virtual FilterColumn* columnByIndex(int index) = 0;
  virtual bool getSortRange(int* rowFirst, int* rowLast, int* colFirst, int* colLast) = 0;
  virtual bool getSort(int* columnIndex, bool* descending) = 0;
  // Recorded in the file; rows are not reordered.
  virtual bool setSort(int columnIndex, bool descending = false) = 0;

 protected:
  ~AutoFilter() = default;
};

// A worksheet.
class Sheet {
 public:
  // Cells. Reading gives the cell's format through `format`, also when the cell is empty, unless
  // the operation is refused. Writing with a null format keeps the cell's, else takes the row's or
  // the column's. Reading an empty or blank cell gives null, 0 or false with the message "ok".
  virtual CellType cellType(int row, int col) const = 0;
  virtual bool isFormula(int row, int col) const = 0;
  virtual Format* cellFormat(int row, int col) const = 0;
  virtual void setCellFormat(int row, int col, Format* format) = 0;
  // A number is given as its shortest decimal text. At most 32767 characters are written.
  virtual const wchar_t* readStr(int row, int col, Format** format = nullptr) = 0;
  virtual bool writeStr(int row, int col, const wchar_t* value, Format* format = nullptr,
                        CellType type = CellText) = 0;
  virtual double readNum(int row, int col, Format** format = nullptr) const = 0;
  virtual bool writeNum(int row, int col, double value, Format* format = nullptr) = 0;
  // With an error other than ErrorNone an error cell is written instead.
  virtual bool readBool(int row, int col, Format** format = nullptr) const = 0;
  virtual bool writeBool(int row, int col, bool value, Format* format = nullptr,
                         ErrorType error = ErrorNone) = 0;
  virtual bool readBlank(int row, int col, Format** format = nullptr) const = 0;
  virtual bool writeBlank(int row, int col, Format* format) = 0;
  // Formulas have no leading "=". They are not calculated: without a cached value a spreadsheet
  // program fills it in when it opens the file.
  virtual const wchar_t* readFormula(int row, int col, Format** format = nullptr) = 0;
  virtual bool writeFormula(int row, int col, const wchar_t* expr, Format* format = nullptr) = 0;
  virtual bool writeFormulaNum(int row, int col, const wchar_t* expr, double value,
                               Format* format = nullptr) = 0;
  virtual bool writeFormulaStr(int row, int col, const wchar_t* expr, const wchar_t* value,
                               Format* format = nullptr) = 0;
  virtual bool writeFormulaBool(int row, int col, const wchar_t* expr, bool value,
                                Format* format = nullptr) = 0;
  // Width and height in pixels, 1..32767.
  virtual const wchar_t* readComment(int row, int col) const = 0;
  virtual void writeComment(int row, int col, const wchar_t* value, const wchar_t* author = nullptr,
                            int width = 129, int height = 75) = 0;
  virtual void removeComment(int row, int col) = 0;
  virtual bool isDate(int row, int col) const = 0;
  virtual ErrorType readError(int row, int col) const = 0;
  virtual void writeError(int row, int col, ErrorType error, Format* format = nullptr) = 0;

  // The used range; the last ones are one past the last cell. All 0 on an empty sheet.
  virtual int firstRow() const = 0;
  virtual int lastRow() const = 0;
  virtual int firstCol() const = 0;
  virtual int lastCol() const = 0;

  // Widths in characters of the default font, heights in points. 0 hides, -1 fits automatically.
  virtual double colWidth(int col) const = 0;
  virtual double rowHeight(int row) const = 0;
  virtual bool setCol(int colFirst, int colLast, double width, Format* format = nullptr,
                      bool hidden = false) = 0;
  virtual bool setRow(int row, double height, Format* format = nullptr, bool hidden = false) = 0;
  virtual bool rowHidden(int row) const = 0;
  virtual bool setRowHidden(int row, bool hidden) = 0;
  virtual bool colHidden(int col) const = 0;
  virtual bool setColHidden(int col, bool hidden) = 0;
  // Merged ranges, by one of their cells or by position.
  virtual bool getMerge(int row, int col, int* rowFirst, int* rowLast, int* colFirst,
                        int* colLast) = 0;
  virtual bool setMerge(int rowFirst, int rowLast, int colFirst, int colLast) = 0;
  virtual bool delMerge(int row, int col) = 0;
  virtual int mergeSize() const = 0;
  virtual bool merge(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast) = 0;
  virtual bool delMergeByIndex(int index) = 0;
  // Each call adds one outline level, up to 7.
  virtual bool groupRows(int rowFirst, int rowLast, bool collapsed = true) = 0;
  virtual bool groupCols(int colFirst, int colLast, bool collapsed = true) = 0;
  virtual bool groupSummaryBelow() const = 0;
  virtual void setGroupSummaryBelow(bool below) = 0;
  virtual bool groupSummaryRight() const = 0;
  virtual void setGroupSummaryRight(bool right) = 0;
  // Empties cells, comments included; what belongs to rows, columns and ranges stays.
  virtual void clear(int rowFirst = 0, int rowLast = 1048575, int colFirst = 0,
                     int colLast = 16383) = 0;
  virtual bool insertRow(int rowFirst, int rowLast, bool updateNamedRanges = true) = 0;
  virtual bool insertCol(int colFirst, int colLast, bool updateNamedRanges = true) = 0;
  virtual bool removeRow(int rowFirst, int rowLast, bool updateNamedRanges = true) = 0;
  virtual bool removeCol(int colFirst, int colLast, bool updateNamedRanges = true) = 0;
  virtual bool copyCell(int rowSrc, int colSrc, int rowDst, int colDst) = 0;
  // The columns are fitted to the texts of the rows when saving; -1 is the end of the used range.
  virtual void setAutoFitArea(int rowFirst = 0, int colFirst = 0, int rowLast = -1,
                              int colLast = -1) = 0;

  // Pictures on the sheet. Sizes and offsets in pixels at 96 per inch; -1 is the picture's own
  // size or follows from its proportions. Returns the picture's id in the book, or -1.
  virtual int pictureSize() const = 0;
  virtual int getPicture(int index, int* rowTop = nullptr, int* colLeft = nullptr,
                         int* rowBottom = nullptr, int* colRight = nullptr, int* width = nullptr,
                         int* height = nullptr, int* offsetX = nullptr, int* offsetY = nullptr,
                         const wchar_t** linkPath = nullptr) const = 0;
  virtual void setPicture(int row, int col, int pictureId, double scale = 1.0, int offsetX = 0,
                          int offsetY = 0, Position pos = PositionMoveAndSize) = 0;
  virtual void setPicture2(int row, int col, int pictureId, int width = -1, int height = -1,
                           int offsetX = 0, int offsetY = 0,
                           Position pos = PositionMoveAndSize) = 0;

  // Page breaks lie above a row (horizontal) or left of a column (vertical).
  virtual int getHorPageBreak(int index) const = 0;
  virtual int getHorPageBreakSize() const = 0;
  virtual int getVerPageBreak(int index) const = 0;
  virtual int getVerPageBreakSize() const = 0;
  virtual bool setHorPageBreak(int row, bool pageBreak = true) = 0;
  virtual bool setVerPageBreak(int col, bool pageBreak = true) = 0;

  // Freezes the rows above and the columns left of a cell; 0, 0 unfreezes.
  virtual void split(int row, int col) = 0;
  virtual bool splitInfo(int* row, int* col) const = 0;
  virtual bool displayGridlines() const = 0;
  virtual void setDisplayGridlines(bool show = true) = 0;
  // Percent, 10..400.
  virtual int zoom() const = 0;
  virtual void setZoom(int zoom) = 0;
  // At most 31 characters; unlike every other sheet's name, case ignored.
  virtual const wchar_t* name() const = 0;
  virtual void setName(const wchar_t* name) = 0;
  virtual bool protect() const = 0;
  virtual void setProtect(bool protect = true, const wchar_t* password = nullptr,
                          EnhancedProtection enhancedProtection = ProtectDefault) = 0;
  virtual bool rightToLeft() const = 0;
  virtual void setRightToLeft(bool rightToLeft = true) = 0;
  // The only visible sheet cannot be hidden.
  virtual SheetState hidden() const = 0;
  virtual bool setHidden(SheetState state = StateHidden) = 0;
  virtual void getTopLeftView(int* row, int* col) const = 0;
  virtual void setTopLeftView(int row, int col) = 0;
  // ColorAuto removes the colour; components are 0..255.
  virtual void setTabColor(Color color) = 0;
  virtual void setTabColor(int red, int green, int blue) = 0;

  // Page setup. Margins in inches.
  virtual bool printGridlines() const = 0;
  virtual void setPrintGridlines(bool print = true) = 0;
  // Percent, 10..400; switches fitting to pages off.
  virtual int printZoom() const = 0;
  virtual void setPrintZoom(int zoom) = 0;
  // Pages wide and tall; 0 is as many as needed.
  virtual bool getPrintFit(int* wPages, int* hPages) const = 0;
  virtual void setPrintFit(int wPages = 1, int hPages = 1) = 0;
  virtual bool landscape() const = 0;
  virtual void setLandscape(bool landscape = true) = 0;
  virtual Paper paper() const = 0;
  virtual void setPaper(Paper paper = PaperDefault) = 0;
  // Texts with their & codes, at most 255 characters.
  virtual const wchar_t* header() const = 0;
  virtual bool setHeader(const wchar_t* header, double margin = 0.5) = 0;
  virtual double headerMargin() const = 0;
  virtual const wchar_t* footer() const = 0;
  virtual bool setFooter(const wchar_t* footer, double margin = 0.5) = 0;
  virtual double footerMargin() const = 0;
  virtual bool hCenter() const = 0;
  virtual void setHCenter(bool hCenter = true) = 0;
  virtual bool vCenter() const = 0;
  virtual void setVCenter(bool vCenter = true) = 0;
  virtual double marginLeft() const = 0;
  virtual void setMarginLeft(double margin) = 0;
  virtual double marginRight() const = 0;
  virtual void setMarginRight(double margin) = 0;
  virtual double marginTop() const = 0;
  virtual void setMarginTop(double margin) = 0;
  virtual double marginBottom() const = 0;
  virtual void setMarginBottom(double margin) = 0;
  // Row and column headings.
  virtual bool printRowCol() const = 0;
  virtual void setPrintRowCol(bool print = true) = 0;
  // Titles repeated on every page, and the first range of the print area.
  virtual bool printRepeatRows(int* rowFirst, int* rowLast) const = 0;
  virtual void setPrintRepeatRows(int rowFirst, int rowLast) = 0;
  virtual bool printRepeatCols(int* colFirst, int* colLast) const = 0;
  virtual void setPrintRepeatCols(int colFirst, int colLast) = 0;
  virtual bool printArea(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const = 0;
  virtual void setPrintArea(int rowFirst, int rowLast, int colFirst, int colLast) = 0;
  virtual void clearPrintRepeats() = 0;
  virtual void clearPrintArea() = 0;

  // Names. Scope: ScopeUndefined looks in this sheet, then in the book.
  virtual bool getNamedRange(const wchar_t* name, int* rowFirst, int* rowLast, int* colFirst,
                             int* colLast, int scopeId = ScopeUndefined,
                             bool* hidden = nullptr) const = 0;
  virtual bool setNamedRange(const wchar_t* name, int rowFirst, int rowLast, int colFirst,
                             int colLast, int scopeId = ScopeUndefined) = 0;
  virtual bool delNamedRange(const wchar_t* name, int scopeId = ScopeUndefined) = 0;
  virtual int namedRangeSize() const = 0;
  virtual const wchar_t* namedRange(int index, int* rowFirst, int* rowLast, int* colFirst,
                                    int* colLast, int* scopeId = nullptr,
                                    bool* hidden = nullptr) const = 0;

  // Links of cells: "#Sheet1!A1", a URL, or a path.
  virtual int hyperlinkSize() const = 0;
  virtual const wchar_t* hyperlink(int index, int* rowFirst, int* rowLast, int* colFirst,
                                   int* colLast) const = 0;
  virtual bool delHyperlink(int index) = 0;
  virtual void addHyperlink(const wchar_t* hyperlink, int rowFirst, int rowLast, int colFirst,
                            int colLast) = 0;

  // Addresses of single cells, as "C5"; a dollar sign marks a part that is not relative.
  virtual void addrToRowCol(const wchar_t* addr, int* row, int* col, bool* rowRelative = nullptr,
                            bool* colRelative = nullptr) = 0;
  virtual const wchar_t* rowColToAddr(int row, int col, bool rowRelative = true,
                                      bool colRelative = true) = 0;

  // Tables, in file order; the range includes header and totals rows.
  virtual int tableSize() const = 0;
  virtual const wchar_t* table(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                               int* headerRowCount, int* totalsRowCount) const = 0;
  // One object a sheet, also while no range is set.
  virtual AutoFilter* autoFilter() = 0;
  virtual void applyFilter() = 0;
  virtual void removeFilter() = 0;
  virtual bool addIgnoredError(int rowFirst, int colFirst, int rowLast, int colLast,
                               IgnoredError iError) = 0;
  // Values are formulas or lists of choices; value2 counts for between and not between only.
  virtual void addDataValidation(DataValidationType type, DataValidationOperator op, int rowFirst,
                                 int rowLast, int colFirst, int colLast, const wchar_t* value1,
                                 const wchar_t* value2, bool allowBlank = true,
                                 bool hideDropDown = false, bool showInputMessage = true,
                                 bool showErrorMessage = true, const wchar_t* promptTitle = nullptr,
                                 const wchar_t* prompt = nullptr,
                                 const wchar_t* errorTitle = nullptr,
                                 const wchar_t* error = nullptr,
                                 DataValidationErrorStyle errorStyle = ErrorStyleStop) = 0;
  // Dates as day numbers, times as fractions of a day.
  virtual void addDataValidationDouble(
      DataValidationType type, DataValidationOperator op, int rowFirst, int rowLast, int colFirst,
      int colLast, double value1, double value2, bool allowBlank = true, bool hideDropDown = false,
      bool showInputMessage = true, bool showErrorMessage = true,
      const wchar_t* promptTitle = nullptr, const wchar_t* prompt = nullptr,
      const wchar_t* errorTitle = nullptr, const wchar_t* error = nullptr,
      DataValidationErrorStyle errorStyle = ErrorStyleStop) = 0;
  virtual void removeDataValidations() = 0;

 protected:
  ~Sheet() = default;
};

// A workbook. The factory fixes its file format for life.
class Book {
 public:
  // A load replaces the contents only when all it has to read was read. With a tempFile, which must
  // not exist or be empty, the source bytes are kept there instead of in memory.
  virtual bool load(const wchar_t* path, const wchar_t* tempFile = nullptr) = 0;
  // The bytes may be freed on return. Without rows a whole sheet, without a sheet everything.
  virtual bool loadRaw(const char* data, unsigned size, int sheetIndex = -1, int firstRow = -1,
                       int lastRow = -1) = 0;
  virtual bool loadSheet(const wchar_t* path, int sheetIndex,
                         const wchar_t* tempFile = nullptr) = 0;
  // lastRow -1 is the end of the sheet.
  virtual bool loadPartially(const wchar_t* path, int sheetIndex, int firstRow, int lastRow,
                             const wchar_t* tempFile = nullptr) = 0;
  // The list of sheets only; what needs more is refused afterwards.
  virtual bool loadInfo(const wchar_t* path) = 0;
  // Writes beside the target and renames, so that the old file stays whole on failure.
  virtual bool save(const wchar_t* path, bool useTempFile = false) = 0;
  // The buffer is the book's until the next saveRaw, load or release.
  virtual bool saveRaw(const char** data, unsigned* size) = 0;
  // UTF-8, never null; "ok" when the last operation was not refused.
  virtual const char* errorMessage() const = 0;
  // Frees the book and everything it handed out.
  virtual void release() = 0;

  // A copy of initSheet, which must be of this book, when it is given.
  virtual Sheet* addSheet(const wchar_t* name, Sheet* initSheet = nullptr) = 0;
  virtual Sheet* insertSheet(int index, const wchar_t* name, Sheet* initSheet = nullptr) = 0;
  // Reads a worksheet when it is first asked for; damage in it is told here.
  virtual Sheet* getSheet(int index) const = 0;
  virtual const wchar_t* getSheetName(int index) const = 0;
  virtual SheetType sheetType(int index) const = 0;
  virtual bool moveSheet(int srcIndex, int dstIndex) = 0;
  virtual bool delSheet(int index) = 0;
  virtual int sheetCount() const = 0;
  virtual int activeSheet() const = 0;
  virtual void setActiveSheet(int index) = 0;

  // Copies the values of init, of any book, at this moment.
  virtual Format* addFormat(Format* init = nullptr) = 0;
  virtual Font* addFont(Font* init = nullptr) = 0;
  // Returns the id, the same for the same code; 0 when refused.
  virtual int addCustomNumFormat(const wchar_t* numFormat) = 0;
  virtual const wchar_t* customNumFormat(int fmt) = 0;
  virtual Format* format(int index) = 0;
  virtual int formatSize() = 0;
  virtual Font* font(int index) = 0;
  virtual int fontSize() = 0;
  // Name and size in points of font 0.
  virtual const wchar_t* defaultFont(int* fontSize) = 0;
  virtual void setDefaultFont(const wchar_t* fontName, int fontSize) = 0;

  // Pictures of the book by id; their kind is found from their bytes.
  virtual int pictureSize() const = 0;
  virtual PictureType getPicture(int index, const char** data, unsigned* size) const = 0;
  virtual int addPicture(const wchar_t* path) = 0;
  virtual int addPicture2(const char* data, unsigned size) = 0;
  virtual int addPictureAsLink(const wchar_t* path, bool insert = false) = 0;

  // Dates as day numbers of the book's date system. Values that are no date are refused.
  virtual double datePack(int year, int month, int day, int hour = 0, int min = 0, int sec = 0,
                          int msec = 0) const = 0;
  virtual bool dateUnpack(double value, int* year, int* month, int* day, int* hour = nullptr,
                          int* min = nullptr, int* sec = nullptr, int* msec = nullptr) const = 0;
  // Components 0..255. In palette mode the nearest entry of the book's palette.
  virtual Color colorPack(int red, int green, int blue) = 0;
  virtual void colorUnpack(Color color, int* red, int* green, int* blue) = 0;

  // Whether colours are given as red, green and blue rather than as palette indices.
  virtual bool rgbMode() const = 0;
  virtual void setRgbMode(bool rgbMode = true) = 0;
  virtual bool refR1C1() const = 0;
  virtual void setRefR1C1(bool refR1C1 = true) = 0;
  // 1536 for .xls, 0 for .xlsx.
  virtual int biffVersion() const = 0;
  virtual bool isDate1904() const = 0;
  virtual void setDate1904(bool date1904 = true) = 0;
  virtual bool isTemplate() const = 0;
  virtual void setTemplate(bool tmpl = true) = 0;
  // Separators of texts that the library forms itself; false for an unknown locale.
  virtual bool setLocale(const char* locale) = 0;

 protected:
  ~Book() = default;
};

}  // namespace libxl

// New empty books: .xls (BIFF8) and .xlsx. Null when memory is short; nothing is thrown.
#pragma GCC visibility push(default)
extern "C" libxl::Book* xlCreateBookW();
extern "C" libxl::Book* xlCreateXMLBookW();
#pragma GCC visibility pop
