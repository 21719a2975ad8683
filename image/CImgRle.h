#pragma once
// CImgRle: the run-length code of recorded intensity planes, on plain byte
// blocks. CTgtImg::Compress and CTgtImg::Uncompress are these two calls with
// the image's m_nImgBytes as the sample count.
//
// The stream, read one code at a time:
//   00 n   a run of n zero samples (n 1 to 255; the encoder uses it for 2 up)
//   01     one zero sample
//   b      any other byte: one sample of value b
//   02 02  end mark, the last two bytes of every stream the encoder makes
// A run longer than 255 is cut into pieces of 255 and what is left (256 is
// 00 FF 01, 510 is 00 FF 00 FF, 258 is 00 FF 00 03). The stream carries
// neither its own length nor the sample count: the record does.
//
// The code is lossy in a controlled way: every sample below the level is
// stored as zero. Level 0 is unusable (zero samples would go out as literal
// bytes that the decoder takes for run codes), and with level 1 a sample of
// value 1 goes out as the code 01 and decodes as 0. From level 2 up every
// sample at or above the level round-trips unchanged, save the last two
// samples of an image that hardly compresses (see Encode).
#include "core/platform/Types.h"

class CImgRle {
public:
    // Encodes the n bytes at pSrc into pDst, which has room for n bytes, and
    // returns the stream's length, never more than n.
    //
    // When the codes take more than n - 2 bytes the last two bytes written
    // are overwritten with the end mark, so the image decodes with 2, 2 as its
    // last two samples; otherwise the mark is appended.
    //
    // n of 0 writes nothing and returns 0. n of 1 writes the single code of
    // the sample (01 or the byte itself) without end mark and returns 1: the
    // mark has no room and the decoder does not need it, so a 1-byte image
    // round-trips like any other.
    //
    // One pass, no allocation; eight samples a step through a table of their
    // codes where the CPU has SSSE3, one at a time elsewhere. The output is
    // byte for byte that of a sample-by-sample encoder. pDst may be written
    // past the stream's end, never past n.
    static unsigned int Encode(const BYTE* pSrc, BYTE* pDst, unsigned int n, BYTE nLevel);

    // Decodes nSize stream bytes from pSrc into pDst, writing at most n
    // samples. nSize 0 writes nothing; a stream that ends early leaves the
    // rest of pDst as it was, one that decodes to more than n samples is cut
    // at n. A 00 at the last byte of the stream is taken as a literal zero
    // sample, and a run count of 0 writes nothing.
    //
    // A run count of 0xFF followed by a byte 0xFF: that byte is a sample of
    // value 255, as the encoder meant it (it writes that pair where a run of
    // a multiple of 255 zeros is followed by a sample of 255). A decoder that
    // stepped over the byte would lose the sample and shift the rest of the
    // image by one, so the pair is read as two codes like any other.
    //
    // Byte for byte the result of a code-by-code decoder (bytes of pDst past
    // the decoded samples included), sixteen stream bytes a step on x86.
    static void Decode(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n);
};
