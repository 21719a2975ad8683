#include "core/CZSet.h"
#include "ping/CPing.h"

void CPing::Settings(CZSetObj& set)
{
    set.Item(u"PingID", m_pingID);
    set.Item(u"Active", m_active);
    set.Item(u"HalfArr", m_halfArr);
    set.Item(u"StartRngL", m_startRngL);
    set.Item(u"EndRngL", m_endRngL);
    set.Item(u"StartRngM", m_startRngM);
    set.Item(u"EndRngM", m_endRngM);
    set.Item(u"ScanRate", m_scanRate);
    set.Item(u"TxLength", m_txLength);
    set.Item(u"ModFreq", m_modFreq);
    set.Item(u"Shading", m_shading);
    set.Item(u"PingDelay", m_pingDelay);
    set.Item(u"PingRateDesired", m_pingRateDesired);
    set.Item(u"PingFlags", m_pingFlags);
    set.Item(u"MainGain", m_mainGain);
    set.Item(u"AutoGain", m_autoGain);
    set.Item(u"AutoXdGain", m_autoXdGain);
    set.Item(u"GainBlank", m_gainBlank);
    set.Item(u"AdcInput", m_adcInput);
    set.Item(u"SpreadGain", m_spreadGain);
    set.Item(u"AbsorbGain", m_absorbGain);
    set.Item(u"bfInXd", m_bfInXd);
    set.Item(u"bfType", m_bfType);
    set.Item(u"bfFocus", m_bfFocus);
    set.Item(u"bfGain", m_bfGain);
    set.Item(u"bfBits", m_bfBits);
    set.Item(u"bfGenPA", m_bfGenPA);
    set.Item(u"bfRng", m_bfRng);
    set.Item(u"Aperture", m_aperture);
    set.Item(u"DataType", m_dataType);
    // The host's files carry "bfRng" a second time, as a 16-bit item holding
    // m_adcInput. The store keeps it beside the float "bfRng" (items are
    // told apart by key and type), so it is still written, and files keep
    // the items the host's own have. On loading it is read into a scratch
    // value and dropped: m_adcInput comes from "AdcInput" alone, and a file
    // without the 16-bit item can't have the beamformer range (a whole float
    // the store would convert) poured into the converter input word.
    short adcAgain = m_adcInput;
    set.Item(u"bfRng", adcAgain);
    set.Item(u"FocusTbl", m_focusTbl);
    set.Item(u"TxStart", m_txStart);
    set.Item(u"TxLen", m_txLen);
    set.Item(u"TxRadius", m_txRadius);
    set.Item(u"TxRng", m_txRng);
    set.Item(u"RX1_ID", m_rx1ID);
    set.Item(u"RX2_ID", m_rx2ID);
    set.Item(u"TX1_ID", m_tx1ID);
    set.Item(u"TX2_ID", m_tx2ID);
    set.Item(u"RLEEnable", m_rleEnable);
    set.Item(u"RLELevel", m_rleLevel);
    set.Item(u"BaseGain", m_baseGain);
    set.Item(u"FocusMode", m_focusMode);
    set.Item(u"FilterBank", m_filterBank);
    set.Item(u"SamChannel", m_samChannel);
    set.Item(u"SamRow", m_samRow);
    set.Item(u"DisableOOW", m_disableOOW);
    set.Item(u"SWGainRamp", m_swGainRamp);
    set.Item(u"Trigger", m_trigger);
    set.Item(u"PercentGain", m_percentGain);
    set.Item(u"GainAssist", m_gainAssist);
    set.Item(u"TxSrcLevel", m_txSrcLevel);
    set.Item(u"BaseMF", m_baseMF);

    // The beam count goes through a temporary so that a loaded count takes
    // the reallocation of SetNumBeams rather than landing in the field.
    short numBeams = m_numBeams;
    set.Item(u"NumBeams", numBeams);
    if (set.IsLoading()) SetNumBeams(numBeams);
}
