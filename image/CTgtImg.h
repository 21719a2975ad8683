#pragma once
// CTgtImg: one ping's worth of sonar data with everything that belongs to it:
// the intensity image by range (rows) and bearing (columns), the raw and
// phase/amplitude planes it was made from, the acoustic zoom image, the
// display images and their textures, the targets (in m_tgtRec) and
// boundaries, and the ping's parameters (Ping()).
//
// All fields are public: the filter, the renderer and the host work on them
// directly. Every pointer field is owned by the image; a byte count is 0
// exactly when its buffer is absent. Sample buffers are row by row, row 0 the
// nearest range line, and all of them have m_nRngs lines. The second
// receiver's buffers (m_pQI2, m_pPhs2, m_pAmp2, m_pImg2) exist exactly when
// the ping's m_rx2ID was non-zero when their sizing call ran, so set the
// ping before sizing.
//
// Images come from GetImg and go back with DelImg: the pool keeps up to 20
// idle ones, with their buffers, and hands them out oldest first, so a steady
// stream of like pings allocates nothing. Nothing of an image is locked by the
// library; m_lock is there for the host.
//
// This store's calls are declared here; the image arithmetic and queries and
// the display code are further members of this class, declared below by their
// own code and implemented in processing/ and render/.
#include "core/CList_Ptr.h"
#include "core/platform/CMutex.h"
#include "core/platform/CRgb.h"
#include "core/platform/CStatBuf.h"
#include "core/platform/CV3.h"
#include "core/platform/Types.h"
#include "targets/CBnd.h"
#include "targets/CTgtRec.h"

#include <cstddef>
#include <list>
#include <vector>

class CArchive;
class CColTbl;
class CDsp;
class CMat;
class CPing;

class CTgtImg {
public:
    CTgtRec m_tgtRec;        // targets, the ping (Ping()) and the record's own values
    BYTE* m_pQI;             // raw data, receiver 1: m_nRngs lines of m_nQIWidth bytes; null when absent
    BYTE* m_pPhs;            // phase, receiver 1: m_nRngs lines of m_nPAWidth bytes
    BYTE* m_pAmp;            // amplitude, receiver 1: as m_pPhs
    BYTE* m_pImg;            // intensity, receiver 1: m_nRngs rows of m_nBrgs samples of m_nPixBytes bytes
    BYTE* m_pLX;             // line records: 4 bytes a range line (u16 gain applied, 0 none; u16 carried)
    BYTE* m_pQI2;            // as m_pQI, receiver 2
    BYTE* m_pPhs2;           // as m_pPhs, receiver 2
    BYTE* m_pAmp2;           // as m_pAmp, receiver 2
    BYTE* m_pImg2;           // as m_pImg, receiver 2
    UINT m_nCompLevel;       // compression threshold; its low byte goes to Compress. Default 8
    std::vector<CV3> m_vStart;  // per bearing: world position of the image's near edge
    std::vector<CV3> m_vEnd;    // per bearing: the far edge
    std::vector<CV3> m_vDir;    // per bearing: unit vector from m_vStart to m_vEnd
    UINT m_nBrgs;            // bearings (columns)
    UINT m_nRngs;            // range lines (rows) of every buffer
    UINT m_nQIWidth;         // bytes per line of m_pQI
    UINT m_nPAWidth;         // bytes per line of each phase and amplitude buffer
    UINT m_nStartRng;        // first sample of the span, counted from the ping
    UINT m_nEndRng;          // sample one past the span's last line
    UINT m_nStartBrg;        // first bearing of the span
    UINT m_nEndBrg;          // bearing one past the span's last
    BYTE m_bNewSize;         // 1 after Alloc, cleared when SetImgSize rebuilds the display image
    UINT m_nImgBytes;        // bytes of m_pImg (and of m_pImg2)
    UINT m_nQIBytes;         // bytes of m_pQI (and of m_pQI2)
    UINT m_nPABytes;         // bytes of each phase and amplitude buffer
    UINT m_nLXBytes;         // bytes of m_pLX
    BYTE m_nPixBytes;        // bytes per sample of m_pImg, m_pImg2, m_pAZ. Default 1
    CMutex m_lock;           // the host's; the library never takes it
    UINT m_nState;           // blocks held: bit 0 raw, 1 phase/amplitude, 2 intensity, 3 compressed,
                             // 4 targets by range/bearing, 5 targets by position, 6 vectors
    CRgb* m_pDsp;            // display image: m_nBrgs pixels by m_nImgSize rows
    UINT m_nImgSize;         // display rows; 0 when there is no display image
    UINT m_nDspSkip;         // range lines on one display row, less one
    UINT m_nDspRows;         // display rows filled
    UINT m_nTexId;           // OpenGL texture of the display image; 0 none
    UINT m_bTexDirty;        // non-zero: upload the display image again
    CList_Ptr<CBnd*> m_bnds; // boundaries; the image owns the CBnd objects
    UINT* m_pBrgBnd;         // one word per bearing, sized by Alloc, zeroed by ClearBnds; the host's meaning
    UINT m_nBndLevel;        // default 20; copied between images, otherwise the host's
    std::vector<CV3> m_vAux; // the host's; the library only constructs and destroys it
    UINT m_nPoolRef;         // 1 while the image lies in s_imgPool, else 0
    BYTE m_nRollTgt1;        // index of the target that roll compensation marks 1
    BYTE m_nRollTgt2;        // index of the target marked 2
    float m_fRoll;           // roll value given to every target
    BYTE m_nRollFlags;       // travels with the three above in the extended ping block
    CV3 m_vExPos;            // x and y travel in the extended ping block
    BYTE* m_pAZ;             // zoom image: m_nAZRngs rows of m_nAZBrgs samples of m_nPixBytes bytes
    UINT* m_pAZLX;           // zoom line records, m_nAZLXCount words
    CRgb* m_pAZDsp;          // zoom display image: m_nAZBrgs pixels by m_nImgSize / 2 rows
    UINT m_nAZSkip;          // zoom lines on one display row, less one
    UINT m_nAZRows;          // zoom display rows filled
    UINT m_nAZTexId;         // OpenGL texture of the zoom display image (never deleted here)
    UINT m_nAZStartRng;      // first sample of the zoom region
    UINT m_nAZEndRng;        // last sample of the zoom region
    UINT m_nAZStartBrg;      // first bearing of the zoom region
    UINT m_nAZEndBrg;        // last bearing of the zoom region, inclusive
    UINT m_nAZBrgs;          // bearings of the zoom image
    UINT m_nAZRngs;          // range lines of the zoom image
    UINT m_nAZDspBrgs;       // m_nAZBrgs at the last sizing of m_pAZDsp
    UINT m_nAZDspRngs;       // m_nAZRngs at the last sizing of m_pAZDsp
    UINT m_nAZLXCount;       // 32-bit elements of m_pAZLX
    UINT m_nAZBytes;         // bytes of m_pAZ

    // Idle images, oldest first. Guarded by s_imgLock.
    static std::list<CTgtImg*> s_imgPool;
    // Guards s_imgPool; taken only by GetImg and DelImg.
    static CMutex s_imgLock;
    // Compression work buffer shared by every image, without a lock: compressed
    // records go through one thread at a time. Null until first used.
    static BYTE* s_pCompress;
    // Bytes of s_pCompress.
    static UINT s_compressSize;
    // Display heights for the user: "32. Poor" 32, "64. V. Low" 64, "128. Low"
    // 128, "256. Normal" 256, "512. High" 512, "1024. V. High" 1024,
    // "2048. Extreme" 2048, "4096. Extreme" 4096.
    static CStrInt s_resTypes[8];
    // Deletes one OpenGL texture name. Installed by the drawing code, which
    // makes it do nothing when no context is current on the calling thread;
    // while it is null (no drawing code) the destructor deletes no texture.
    static void (*s_pfnDeleteTexture)(UINT nTexId);

    // ---- Object and pool ----

    // No buffers, empty lists, the defaults of InitVars.
    CTgtImg();
    // A full copy of src: every block src holds, sized to it. The copy's
    // m_pBrgBnd is zeroed (operator= copies it).
    CTgtImg(CTgtImg& src);
    // Releases every buffer and boundary, and deletes m_nTexId through
    // s_pfnDeleteTexture when it is non-zero; an image that has been drawn is
    // destroyed on the thread with the OpenGL context.
    virtual ~CTgtImg();

    // An idle image from the pool (the one given back longest ago, unchanged:
    // buffers, sizes, ping, boundaries), or else a new one. Null only when a
    // new image cannot be allocated. Any thread.
    static CTgtImg* GetImg();
    // Gives pImg back and nulls it. A pool of fewer than 20 takes it after
    // clearing its targets and the ping's m_pBeamA and m_pBeamB; a full pool
    // destroys it. Null does nothing. Any thread.
    static void DelImg(CTgtImg*& pImg);
    // Destroys the images in the pool and releases the compression buffer.
    // Takes no lock: for the end of the program, with no other thread inside.
    static void CleanupStatic();

    // The defaults of a newly built object; frees nothing (only for
    // construction): buffers null, sizes and counts 0, m_nPixBytes 1,
    // m_nCompLevel 8, m_bTexDirty 1, m_nBndLevel 20.
    void InitVars();
    // The ping inside m_tgtRec.
    CPing* Ping();
    // Destroys every boundary and zeroes m_pBrgBnd (m_nBrgs words) if present.
    void ClearBnds();
    // Gives every target m_fRoll; the target at index m_nRollTgt1 gets marker
    // 1, else the one at m_nRollTgt2 marker 2.
    void UpdateTargetsWithRollCompensationData();

    // Block flags: each non-zero argument sets its bit, qi 0x01, pa 0x02,
    // img 0x04, rb 0x10, tgt 0x20 (0x08 compressed and 0x40 vectors are no
    // argument). GetState(1,0,1,0,1) is 37.
    static unsigned int GetState(int qi, int pa, int img, int rb, int tgt);
    // m_nState = GetState(...): all other bits are cleared.
    void SetState(int qi, int pa, int img, int rb, int tgt);
    // Each argument 1 when its bit of m_nState (of state) is set, else 0.
    void GetFlags(int& qi, int& pa, int& img, int& rb, int& tgt);
    static void GetFlags(unsigned int state, int& qi, int& pa, int& img, int& rb, int& tgt);

    // ---- Buffers ----
    // Each sizing call takes line and byte counts; 0 in either means the
    // buffer isn't wanted and releases it. Every one stores m_nRngs = nRngs,
    // so the last call sets the line count of the whole image. Reusing a
    // buffer of the same size allocates nothing. The planes of Alloc,
    // AllocQI, AllocPA and SetImgSize start on a 64-byte boundary, which the
    // vector kernels read best, and are C heap blocks (free() releases them).

    // Intensity (m_nPixBytes * nRngs * nBrgs bytes) and per-bearing data
    // (vectors, m_pBrgBnd). m_pImg keeps its samples when nRngs and nBrgs are
    // unchanged, else it is zeroed; m_pImg2 is always zeroed. Sets m_bNewSize.
    // If the heap refuses m_pImg the process ends with "Bye Bye!" (exit 1).
    void Alloc(unsigned int nRngs, unsigned int nBrgs);
    // Raw plane, nRngs lines of nWidth bytes, zeroed.
    void AllocQI(unsigned int nRngs, unsigned int nWidth);
    // Phase and amplitude, nRngs lines of nWidth bytes each, zeroed.
    void AllocPA(unsigned int nRngs, unsigned int nWidth);
    // Line records, nRngs of nRecBytes (the library passes 4, or 0), zeroed.
    void AllocLX(unsigned int nRngs, unsigned int nRecBytes);
    // Zoom image, zeroed when its byte size changes, kept otherwise.
    // Ends the process (exit 0) if the heap refuses it.
    void AllocAZ(unsigned int nRngs, unsigned int nBrgs);
    // Zoom line records, nRngs * nRecWords words, zeroed when the count
    // changes. Returns true.
    bool AllocAZLX(unsigned int nRngs, unsigned int nRecWords);
    // Display images: m_pDsp m_nBrgs by nHeight pixels, m_pAZDsp m_nAZBrgs by
    // nHeight / 2. 0 releases both.
    void SetImgSize(unsigned int nHeight);
    // Zeroes m_pImg if present (not m_pImg2).
    void ClearData();

    // ---- Copying ----
    // All copies assign m_tgtRec (ping and targets), copy the span, m_nPixBytes
    // and m_nState, and set m_bTexDirty.

    // The target becomes a copy of src and drops what src lacks. Sizes a block
    // only when its shape (lines, width, m_rx2ID) differs.
    CTgtImg& operator=(CTgtImg const& src);
    // As operator=, but a block src doesn't hold (zero lines or width) stands.
    void CopyPreserve(CTgtImg const& src);
    // src's shape and header without its samples: blocks are re-sized (and
    // so zeroed) only when their shape differs; line records, m_pBrgBnd and
    // the zoom data are copied, boundaries are not touched.
    void Set(CTgtImg& src);

    // ---- Records ----

    // Stores or loads the image record: m_tgtRec's record, the block flags
    // (nFlags when storing, whatever m_nState says; ignored when loading,
    // where the record's word becomes m_nState), the header, then the blocks
    // the flags name (0x01 raw, 0x02 phase/amplitude, 0x04 intensity, 0x08
    // with 0x04 compressed, 0x10/0x20 targets, 0x40 vectors) and the
    // boundaries. A loader checks that the archive holds every announced
    // block before allocating for it (CArchiveException cause 3 otherwise).
    // Compressed blocks use s_pCompress: one thread at a time.
    virtual void Serialize(CArchive& ar, unsigned int nFlags);
    // The extended ping block: line records and later ping fields. Stores
    // version 0x34 (position), or 0x21 (roll values) when Zan::zanMode is 1;
    // loads every version and the older form, skipping fields it doesn't know.
    void SerializePingEx(CArchive& ar);
    // The zoom block: the ping's zoom record, then the region and m_pAZ.
    // False, with nothing more in the stream, when the ping has no zoom region.
    bool SerializeAcousticZoom(CArchive& ar);

    // ---- Compression (see CImgRle) ----

    // Encodes m_nImgBytes bytes of pSrc into pDst (room for m_nImgBytes) with
    // threshold nLevel; returns the stream's length, at most m_nImgBytes.
    unsigned int Compress(unsigned char* pSrc, unsigned char* pDst, unsigned char nLevel);
    // Decodes nSize stream bytes of pSrc into pDst, at most m_nImgBytes bytes.
    void Uncompress(unsigned char* pDst, unsigned char* pSrc, unsigned int nSize);

    // ---- Image arithmetic (processing/CTgtImgArith.cpp) ----
    // All run on the caller's thread; the host keeps the image still meanwhile.
    // A float value goes to a sample by truncation and keeps its low bits.
    // The gain g is the ping's m_bfGain, as an unsigned 32-bit number.

    // Divides each 16-bit sample of m_pQI (rows m_nBrgs samples apart) by the
    // greater of its line's and, with useCols, its column's strongest echo:
    // s * g * 65535.0 / den, den at least 65535; the line maxima spread to
    // lines r - 1 and r + 1 when the ping's m_nrmSpread is set, the column
    // maxima come from lines 0 to m_nRngs - 51 and only when m_nRngs > 50.
    // Nothing happens without lines, width or plane, or when m_nBrgs samples
    // a line don't fit m_nQIWidth.
    void Normalise16(int useCols);
    // The same from m_pQI into m_pImg (Alloc(m_nRngs, m_nQIWidth / 2); m_pQI
    // stays): values compared s * g / 255 (whole numbers), floor 255, spread
    // to lines r - 3 and r + 3, columns from lines 50 on; the byte is
    // s * (g / 255.0) * 255.0 / den.
    void Normalise8(int useCols);
    // Linear stretch of the raw plane, taken as one run of m_nQIBytes / 2
    // samples, into m_pImg (Alloc(m_nRngs, m_nQIWidth / 2)): minI is m_bfGain
    // but at most 255 (a negative gain stands), maxI the plane's greatest
    // sample; 0 below minI, 1 when maxI equals minI, else
    // 1 + 254 * (v - minI) / (maxI - minI). Reports status 6030 "MinI:%u MaxI:%u".
    // The argument isn't used.
    void Norm16to8(double);
    // Phase and amplitude of the quadrature pairs of m_pQI into m_pPhs and
    // m_pAmp (AllocPA(m_nRngs, elements of the ping's Rx1 row)): Q and I the
    // signed bytes at bits 8-15 and 24-31 of each 32-bit sample (GenPA16) or
    // bits 0-7 and 8-15 of each 16-bit sample (GenPA8), divided by 255.0;
    // amplitude sqrt(I^2 + Q^2) * m_bfGain, at most 1.0, times 255.99; phase
    // atan2(Q, I) in 0 to 2 pi times 255 / 2 pi (GenPA16) or times 255.99 / pi,
    // low 8 bits (GenPA8). Only whole samples that m_pQI holds are used.
    void GenPA16();
    void GenPA8();
    // Pixel arithmetic with another image, s this image's sample and o the
    // other's. The 8-bit forms first take other's shape (Set(other)); the
    // 16-bit forms walk m_pQI as far as both planes reach. Nothing happens
    // when either image has no samples.
    // s - o * f, at least 0.
    void SubImg(CTgtImg& other, double f);
    // The greater of s * f and o: echoes decay by f and are renewed.
    void PstImg(CTgtImg& other, double f);
    // s * (1 - f) + o * f: a running average.
    void AccImg(CTgtImg& other, double f);
    void SubImg16(CTgtImg& other, double f);
    void PstImg16(CTgtImg& other, double f);
    void AccImg16(CTgtImg& other, double f);
    // sqrt(s / 255.0) * 255.0 on m_pImg.
    void RootImg();
    // (s / 255.0)^2 * 255.0 on m_pImg.
    void SqrImg();
    // s * f, at most 255.0, on m_pImg.
    void Scale(double f);

    // ---- Queries (processing/CTgtImgQuery.cpp) ----

    // The sample nearest rng (metres) and brg (radians): the line
    // floor(rng / m + 0.5), m = m_sosXd * 0.5 / m_modFreq of the ping, and the
    // bearing of the window m_nStartBrg..m_nEndBrg - 1 whose table entry is
    // nearest (at equal distance the greater bearing; the table may rise or
    // fall). A bearing outside the fan gives the edge. True, with both indices
    // written, only when the line lies in m_nStartRng..m_nEndRng - 1; false
    // when m is not above 0, the ping has no bearing table, or the window is
    // empty or runs past the table.
    bool GetRngBrg(double rng, double brg, int& rngIdx, int& brgIdx);
    // The strongest level in dB of the square of half width win round the
    // sample (cut to the span): 20 log10(v / gain * 0.015625) limited to
    // -84.0 .. 12.0, gain the line's recorded gain (first word of its m_pLX
    // record; 1 when absent or 0), -84.0 for a sample of 0 (64 is 0 dB).
    // 0.0 without m_pImg, outside the span, or unless the ping's m_gainMode is 1.
    double GetIntensityDB(int rngIdx, int brgIdx, int win);

    // ---- Display: placing, picture, drawing (render/) ----
    // None of these take a lock; the caller holds the image. The drawing calls
    // make OpenGL calls into the context current on the calling thread (the
    // host's), so they belong to that thread; CreateImg makes none.

    // Places each bearing of the window m_nStartBrg..m_nEndBrg-1 in the world:
    // m_vStart[i], m_vEnd[i] (near and far edge, from m_nStartRng and
    // m_nEndRng at m_tgtRec.m_sosAvg) and the unit vector m_vDir[i] between
    // them, i = bearing - m_nStartBrg; m_tgtRec.m_frame = sonar. A line array
    // goes through TgtCalc::RT with the ping's bearing table (from entry 0)
    // and the tilt frame; the ring array (receive row flags 0x40) lays the
    // beams round a circle of radius 0.0954844435875365 m, at x * 2pi /
    // m_nBrgs, in the sonar's frame. Returns at once, changing nothing, if any
    // of the three vectors is empty. The window is cut to the vectors and,
    // for a line array, to the bearing table; entries beyond stay as they
    // were. Points that come out not finite are stored as they are.
    void SetupExtents(CMat& sonar, CMat& tilt);

    // Builds the display image m_pDsp (m_nBrgs x m_nImgSize RGBA pixels) from
    // m_pImg: SetImgSize(s_resTypes[resIdx]) first (resIdx 0..7; any other
    // value does nothing at all), then m_nDspSkip + 1 range lines fold onto
    // each display row, keeping their strongest echo; with gainCorr the
    // ping's display gain ratio and (m_gainAssist 0) the per-line gains of
    // m_pLX are corrected for, in unsigned integers limited to 255. depthCol
    // 0 colours by intensity (tbl[i]); non-zero by the depth of the last line
    // of each row, depthMin..depthMax spanning the table, brightness from the
    // intensity, and intensities of 8 and below clear. Rows no line reaches
    // hold intensity 0. Sets m_nDspSkip, m_nDspRows and m_bTexDirty, then
    // builds the zoom picture with the same table, depth span and the gain
    // ratio it used. Nothing happens without m_pImg or a display image.
    // Lines beyond what m_pImg holds (m_nImgBytes) and line records beyond
    // m_nLXBytes aren't read; a missing record counts as "no gain recorded".
    // A depth index below the table keeps its low 8 bits (wrapping round the
    // first 256 entries); tbl always has at least 256 entries. A dB gain
    // factor beyond 32 bits is held at 0xFFFFFFFF. No OpenGL call.
    void CreateImg(CColTbl& tbl, int resIdx, int depthCol, double depthMin, double depthMax, bool gainCorr);
    // The same for the zoom image m_pAZ into m_pAZDsp (m_nAZBrgs x
    // m_nImgSize / 2), with m_nAZSkip / m_nAZRows, the line records of m_pAZLX
    // and m_azDecim; a non-zero gainDen always applies gainNum / gainDen, and
    // per-line rescaling needs no flag. Depth uses m_vStart / m_vEnd from
    // column 0. Nothing happens without m_pAZ and m_pAZDsp, with m_nImgSize
    // below 2, or when the zoom display image wasn't sized (SetImgSize) for
    // the present m_nAZBrgs.
    void CreateAcousticZoomImage(CColTbl& tbl, int depthCol, double depthMin, double depthMax, unsigned int gainDen,
                                 unsigned int gainNum);

    // Lays the display image over the world: one textured, blended triangle
    // strip, far then near point of each bearing (dsp.VertexZ at minus z),
    // texture column (x + 0.5) / m_nBrgs and rows 0..m_nDspRows / m_nImgSize.
    // A bearing with a point that isn't finite is left out. Generates
    // m_nTexId on first use and uploads the picture when m_bTexDirty is set
    // (then clears it). transp 0.0 opaque to 1.0 clear. Leaves blending and
    // texturing enabled. Without a display image, bearings or height, draws
    // nothing and reports status 6040. The display image must have the size
    // m_nBrgs x m_nImgSize that CreateImg / SetImgSize gave it.
    void DrawImg(CDsp& dsp, double transp);
    // Draws the display image as a flat fan round the origin in the z = 0
    // plane: beam x at angle m_pBrgTbl[x] + brgOfs (radians, 0 along +x),
    // from m_nStartRng to m_nEndRng range lines at m_sosXd. flip non-zero
    // mirrors the picture across the fan. Texture as DrawImg (status 6041
    // when there is nothing to draw); a beam count other than m_numBeams is
    // reported (6042) and beams beyond the bearing table are left out. Ends
    // with blending and texturing disabled.
    void DrawFan(double brgOfs, int flip, float transp);
    // The zoom image as its part of the fan: bearings m_nAZStartBrg to
    // m_nAZEndBrg (inclusive) of the main bearing table, ranges
    // m_nAZStartRng and m_nAZEndRng in m_baseMF lines times m_azDecim. The
    // texture m_nAZTexId is uploaded at every call. Status 6043 when there is
    // nothing to draw, alarm 6044 when m_nAZBrgs differs from m_azNumBeams.
    void DrawAZFan(double brgOfs, int flip, double transp);
    // Range rings (about nRings of them, at Zan::NearestMkr spacing, the last
    // held at m_endRngM, radii to the centimetre, each labelled with
    // CDsp::DrawBmpText) and spokes every 15 degrees across m_aperture, in
    // the sonar's frame m_tgtRec.m_frame, colours CDsp::s_grdCol and
    // s_fontCol. The model-view matrix is pushed and popped.
    void DrawGrid(CDsp& dsp, int nRings);

    // The targets of m_tgtRec as 3-pixel points at (x, y, -z), coloured by
    // kind and m_tgtSide; reports status 6031 with the count drawn. An empty
    // list draws and reports nothing.
    void DrawTgts(CDsp& dsp);
    // Targets of a kind other than 0 with lo < z < hi as 5-pixel points,
    // coloured by depth (depthCol non-zero, lo..hi spanning the table, darker
    // for weak levels) or by level.
    void DrawTgtsAsBlocks(CDsp& dsp, CColTbl& tbl, int depthCol, double lo, double hi);
    // The strongest echo above thresh (at least 6) of each bearing as a
    // 5-pixel point, coloured as DrawTgtsAsBlocks; the last range line isn't
    // looked at. Nothing without m_pImg.
    void DrawPoints(CDsp& dsp, double thresh, CColTbl& tbl, int depthCol, double lo, double hi);
    // Every sample above thresh (at least 12) as the solid CDsp::s_rock
    // scaled by v * size / 256, coloured by level or, with depthCol, by |z|
    // wrapping round the table. Nothing without m_pImg.
    void DrawBlocks(CDsp& dsp, double thresh, CColTbl& tbl, int depthCol, double lo, double hi, double size);
    // The outline of each boundary of type 0 as a line loop, out along the
    // near ranges and back along the far ones, measured from the sonar's
    // origin along m_vDir; entries with a negative near range, or with a
    // bearing outside the vectors, are left out.
    void DrawBnds(CDsp& dsp);

private:
    struct Shape;
    Shape CopyHeader(CTgtImg const& src);
    bool QIShapeDiffers(const Shape& old, CTgtImg const& src) const;
    bool PAShapeDiffers(const Shape& old, CTgtImg const& src) const;
    bool ImgShapeDiffers(const Shape& old, CTgtImg const& src) const;
    void CopyQI(CTgtImg const& src);
    void CopyPA(CTgtImg const& src);
    void CopyImg(CTgtImg const& src);
    void CopyLX(const Shape& old, CTgtImg const& src);
    void CopyBrgBnd(CTgtImg const& src);
    void CopyVectors(CTgtImg const& src);
    void CopyBnds(CTgtImg const& src);
    void CopyZoom(CTgtImg const& src, bool bFresh);

    size_t m_nDspPixels;    // pixels held by m_pDsp
    size_t m_nAZDspPixels;  // pixels held by m_pAZDsp

    // Emptied pool nodes, kept so that DelImg can put an image back without
    // allocating a list node. Guarded by s_imgLock.
    static std::list<CTgtImg*> s_spareNodes;
};
