// A host built against the installed package: the database that ships with
// it, and a ping record through an archive.
#include <zandata/ZanData.h>

#include <cstdio>

int main()
{
    Geo::ReadDb(Geo::DefaultDbPath());
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    CPing().Serialize(ar);
    ar.Close();
    std::printf("%d spheroids, a ping record of %llu bytes\n", Geo::sphds.GetCount(), file.GetLength());
    const bool ok = Geo::sphds.GetCount() > 0 && file.GetLength() == 69;
    Geo::ClearDb();
    return ok ? 0 : 1;
}
