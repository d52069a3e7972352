/* Every exported function with its type: a pointer of exactly that type takes its address. Compiled as C and, through
 * signatures.cpp, as C++, which tells apart what C does not (enums and integers). That it links and starts as a C
 * program shows that the library has these functions and needs no C++ runtime. */
#include <nadir/nadir.h>

/* api.h */
const char* (*is_nadir_version)(void) = nadir_version;
const char* (*is_nadir_simd_level)(void) = nadir_simd_level;

/* image.h */
uint32_t (*is_Img_Init)(Img*, uint32_t, uint32_t, uint32_t, void*) = Img_Init;
uint32_t (*is_ImgC_Init)(ImgC*, uint32_t, uint32_t, uint32_t, const void*) = ImgC_Init;
uint32_t (*is_Img_FillBuffer)(Img*, uint32_t) = Img_FillBuffer;
uint32_t (*is_Img_Copy)(const ImgC*, Img*) = Img_Copy;
uint32_t (*is_Img_Convert_I)(Img*, uint32_t) = Img_Convert_I;

/* imgproc.h */
uint32_t (*is_IP_Threshold)(const Img*, Img*, uint32_t, uint32_t) = IP_Threshold;
uint32_t (*is_IP_Threshold_I)(Img*, uint32_t, uint32_t) = IP_Threshold_I;
uint32_t (*is_IP_ThresholdRange)(const Img*, Img*, uint32_t, uint32_t, int32_t) = IP_ThresholdRange;
uint32_t (*is_IP_ThresholdRange_I)(Img*, uint32_t, uint32_t, int32_t) = IP_ThresholdRange_I;
uint32_t (*is_IP_ImgOpImg)(const Img*, const Img*, Img*, uint32_t) = IP_ImgOpImg;
uint32_t (*is_IP_ImgOpImg_I)(Img*, const Img*, uint32_t) = IP_ImgOpImg_I;
uint32_t (*is_IP_Mask)(const Img*, const Img*, Img*, uint32_t) = IP_Mask;
uint32_t (*is_IP_Mask_I)(Img*, const Img*, uint32_t) = IP_Mask_I;
uint32_t (*is_IP_Median3x3)(const Img*, Img*) = IP_Median3x3;
uint32_t (*is_IP_Maximum3x3)(const Img*, Img*) = IP_Maximum3x3;
uint32_t (*is_IP_Morph3x3)(const Img*, Img*, int32_t) = IP_Morph3x3;

/* stereo.h */
void (*is_IP_Census_5x5)(const uint16_t*, uint32_t*, uint32_t, uint32_t) = IP_Census_5x5;
void (*is_SGM_CalcDsiRow)(const uint32_t*, const uint32_t*, uint32_t, uint32_t, uint32_t, uint32_t,
                          uint8_t*) = SGM_CalcDsiRow;
void (*is_SGM_CalcDsiRow_neon)(const uint32_t*, const uint32_t*, uint32_t, uint32_t, uint32_t, uint32_t,
                               uint8_t*) = SGM_CalcDsiRow_neon;
int32_t (*is_PC_Init)(PcBuffer*, uint32_t, uint32_t, uint32_t, int32_t) = PC_Init;
void (*is_PC_Destroy)(PcBuffer*) = PC_Destroy;
void (*is_PC_ResetBuffer)(PcBuffer*) = PC_ResetBuffer;
void (*is_PC_NextFrame)(PcBuffer*) = PC_NextFrame;
void (*is_PC_SwapBuffer)(PcBuffer*) = PC_SwapBuffer;
void (*is_PC_NextRow)(PcBuffer*, const uint8_t*, const uint8_t*, uint8_t*) = PC_NextRow;
void (*is_PC_NextRow_neon)(PcBuffer*, const uint8_t*, const uint8_t*, uint8_t*) = PC_NextRow_neon;
void (*is_SGM_CalcP2)(const uint16_t*, uint32_t, uint32_t, uint8_t*, uint8_t*, uint8_t*, uint8_t*) = SGM_CalcP2;
uint32_t (*is_SGM_FindMinIdx)(const uint8_t*, uint32_t, uint8_t*, uint32_t*) = SGM_FindMinIdx;
uint32_t (*is_SGM_FindMinIdx_neon)(const uint8_t*, uint32_t, uint8_t*, uint32_t*) = SGM_FindMinIdx_neon;
int32_t (*is_SGM_PeakCheckExtended)(const uint8_t*, uint32_t, uint32_t) = SGM_PeakCheckExtended;
int32_t (*is_SGM_PeakCheckExtended_neon)(const uint8_t*, uint32_t, uint32_t) = SGM_PeakCheckExtended_neon;
void (*is_IP_SgmFull)(const uint32_t*, const uint32_t*, const uint16_t*, uint32_t, uint32_t, const SgmParams*,
                      uint16_t*, SgmDebugData*) = IP_SgmFull;
void (*is_IP_Sgm)(const uint32_t*, const uint32_t*, const uint16_t*, uint32_t, uint32_t, uint8_t*,
                  SgmDebugData*) = IP_Sgm;
int32_t (*is_IP_SgmMakeDebugData)(uint32_t, uint32_t, uint32_t, SgmDebugData*) = IP_SgmMakeDebugData;
void (*is_IP_SgmFreeDebugData)(SgmDebugData*) = IP_SgmFreeDebugData;
uint32_t (*is_IP_SgmPostproc)(const uint16_t*, const uint8_t*, uint16_t*, uint32_t, uint32_t) = IP_SgmPostproc;

int main(void) { return 0; }
