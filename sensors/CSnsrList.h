#pragma once
// CSnsrList: an empty class of the exported interface. It holds no records;
// a host that needs a container of sensor records keeps one of its own
// (CSnsrSeq finds bracketing records in a time-ordered run).
class CSnsrList {
public:
    CSnsrList() = default;
    // Copies nothing.
    CSnsrList(const CSnsrList&) {}
    // Does nothing.
    CSnsrList& operator=(const CSnsrList&) { return *this; }
    virtual ~CSnsrList() = default;
};
