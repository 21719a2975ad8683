#pragma once
// Geo: the process-wide geodesy state. Static members only; no instance is
// ever used (the assignment does nothing).
//
// The database: three lists that own their records, filled from a GeoDB.csv
// text file (ReadDb), from a recording (Serialize) or from the settings store
// (Settings). The selection: five borrowed pointers into those lists (primary
// spheroid and projection, secondary spheroid and projection, datum shift
// from the primary datum to the secondary one). The conversions: LLH_ENZ and
// ENZ_LLH between degrees and the selected map grid (Geo::type 0) or the
// line and sample grid of GeoConvLS (Geo::type 1).
//
// Nothing here takes a lock: the host serialises changes of the lists and
// the selection; conversions only read them and may run on any thread while
// nobody changes them. Reports go through Zan::Console at level 0.
#include "core/CList_Mgd.h"
#include "core/platform/CString.h"
#include "core/platform/CV3.h"
#include "geo/CProj.h"
#include "geo/CShft.h"
#include "geo/CSphd.h"

class CArchive;
class CZSetObj;

class Geo {
public:
    // --- Database ------------------------------------------------------

    // Every known record, in order of insertion; a record's place from the
    // head is its selection index in the archive and settings forms.
    // Pointers to records stay valid until ClearDb.
    static CList_Mgd<CSphd> sphds;
    static CList_Mgd<CProj> projs;
    static CList_Mgd<CShft> shfts;

    // Merges the database text file at `path` into the lists. Lines longer
    // than 1023 characters arrive in pieces, each taken as a line. Comment
    // lines begin with '%'; record lines are
    //   SPHD,name,Semi_Minor,Semi_Major,Eccentricity(e²),Flattening(1/f)
    //   PROJ,name,False_East,False_North,Longitude_Origin,Latitude_Origin,Scale
    //        (origin angles in degrees)
    //   SHIFT,name,X,Y,Z,AX,AY,AZ,Scale (metres, arc-seconds, ppm)
    // with the keyword in upper case in the first column, blanks allowed
    // before numbers, blanks round the name removed, anything after the last
    // number ignored. A record equal to one already listed (operator== of its
    // class) is dropped; any other is appended. Every other line, an empty
    // one included, is reported "Geo: Unrecognised string <line>" and
    // skipped. A file that cannot be opened is reported "Geo: Unable to open
    // <path>" and the lists are unchanged.
    static void ReadDb(const CString& path);
    // Writes the lists to `path`, replacing it: three sections, each with two
    // comment lines, records with 14 significant digits, so that ReadDb of
    // the result into empty lists gives the same records in the same order
    // (numbers within the 14 digits). Reports "Geo: Unable to open <path>"
    // when the file cannot be created.
    static void WriteDb(const CString& path);
    // Frees every record and nulls the five selection pointers.
    static void ClearDb();

    // The first listed record equal to `rec` by operator== (which may be a
    // record outside the list), or null.
    static CSphd* FindSphd(const CSphd& rec);
    static CProj* FindProj(const CProj& rec);
    static CShft* FindShft(const CShft& rec);
    // The first listed record of that name (case-sensitive), or null.
    static CSphd* GetSphd(const CString& name);
    static CProj* GetProj(const CString& name);
    static CShft* GetShft(const CString& name);

    // Path of the GeoDB.csv that ships with the library: the file in the
    // folder named by the environment variable ZAN_DATA_DIR if that is set
    // and holds one, else the installed copy (share/zandata/GeoDB.csv under
    // the install prefix) if present, else the copy in the source tree the
    // library was built from. The path is returned even if no file exists
    // there; ReadDb then reports it.
    static CString DefaultDbPath();

    // --- Selection and conversions ------------------------------------

    // Grid system: 0 the selected map grid (Easting, Northing), 1 the line
    // and sample grid; any other value makes the conversions fail. Set by the
    // host; neither stored nor loaded.
    static int type;
    // Line and sample grid origin: non-zero the first, 0 the second. Host's.
    static int concession;
    // Central meridian of the Lo grid, whole degrees east. Host's.
    static int loSystem;
    // Display formats of degrees and directions: only stored for the host.
    static int degreeFmt;
    static int dirFmt;
    // The selection; borrowed from the lists, null when nothing is chosen.
    static CSphd* pSphdP;
    static CProj* pProjP;
    static CSphd* pSphdS;
    static CProj* pProjS;
    static CShft* pShift;  // primary datum to secondary datum; null: none

    // Geographic position in degrees (x longitude, y latitude, z height in
    // metres) to grid. Type 0: with a shift selected the grid is the
    // secondary one; a non-zero `shift` then first takes the position from
    // the primary datum across the shift (needs all four records), while 0
    // takes it to be on the secondary datum already (needs the secondary
    // records). Without a shift the primary records are used whatever
    // `shift` says. out.z is not written. Type 1: out = (-sample, line,
    // in.z) of the line and sample grid; no record is needed. Returns 1 when
    // converted; 0 (out unchanged) when a needed record is missing or the
    // type is neither 0 nor 1.
    static int LLH_ENZ(CV3 in, CV3& out, int shift);
    // Grid to geographic degrees, the mirror of LLH_ENZ. Type 0: out.z is
    // written only when the position crosses the shift (the height on the
    // primary datum, from in.z taken as the height on the secondary one).
    // Type 1: out.z = in.z, out.y the (negative, southern) latitude.
    static int ENZ_LLH(CV3 in, CV3& out, int shift);
    // Grid convergence in degrees at a geographic position in degrees, on
    // the primary records (type 0; 0.0 when one is missing); -50.0 for type
    // 1; 0.0 for any other type.
    static double Conv(CV3 in);
    // Axis names and units: type 0 "Easting" "mE" "Northing" "mN"; type 1
    // "Sample" "mS" "Line" "mL"; any other type leaves the strings alone.
    static void Units(CString& xName, CString& xUnit, CString& yName, CString& yUnit);

    // The whole database and selection as one block, the same in both
    // directions: i32 count and the CSphd records, the same for CProj and
    // CShft, then i32 indices of pSphdP, pProjP, pShift, pSphdS, pProjS (-1
    // for none or not listed), then i32 degreeFmt and dirFmt. Loading appends
    // every stored record (nothing is cleared or merged) and then points the
    // selection at the given places of the lists as they now stand (a
    // negative index or one past the end gives null): call ClearDb first to
    // get the recorded selection back. A count larger than what the archive
    // still holds raises CArchiveException cause 3 before anything is made.
    static void Serialize(CArchive& ar);
    // The same through a settings object: the database text as data lines
    // (the lines WriteDb writes, without line ends), then the items
    // "PriSphd", "PriProj", "DtmShift", "SecSphd", "SecProj" (indices, -1 for
    // none), "DegreeFmt", "DirFmt". Loading merges the lines as ReadDb does
    // (reporting lines it does not recognise), reads each index with 0 as
    // the default (a missing key means the first record) and points the
    // selection; an index of -1 or past the end gives null.
    static void Settings(CZSetObj& obj);

    Geo& operator=(const Geo&) { return *this; }

private:
    // Applies the grammar and merge rule to one line of database text
    // (up to 1023 characters, a trailing line end allowed); returns 1 for a
    // comment or record, 0 after reporting an unrecognised line.
    static int MergeDbLine(LPCTSTR line);
    // Merges text of any length as ReadDb merges a file line: in pieces of
    // at most 1023 characters.
    static void MergeDbText(const CString& text);
    // Produces the database text, line by line without line ends.
    static void DbLines(void (*put)(void* ctx, const CString& line), void* ctx);
};
