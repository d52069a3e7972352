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
uint32_t (*is_IP_Gauss)(const Img*, Img*, uint32_t) = IP_Gauss;
int32_t (*is_IP_PullPush)(const Img*, Img*) = IP_PullPush;
size_t (*is_nadir_pull_push_bytes)(uint16_t, uint16_t) = nadir_pull_push_bytes;
int32_t (*is_nadir_pull_push)(const Img*, Img*, void*, size_t) = nadir_pull_push;
uint32_t (*is_IP_ScaleVga2Qvga)(const Img*, Img*) = IP_ScaleVga2Qvga;
int32_t (*is_IP_Utils_ImgAvrgInit)(const Img*, Img*, Img*, ImgAvrgState*) = IP_Utils_ImgAvrgInit;
int32_t (*is_IP_Utils_ImgAvrgAdd)(const Img*, Img*, Img*, ImgAvrgState*) = IP_Utils_ImgAvrgAdd;
uint32_t (*is_IP_Utils_ImgAvrgProcess)(Img*, const Img*, const Img*, const ImgAvrgState*) = IP_Utils_ImgAvrgProcess;

/* list.h */
void (*is_List_Init)(List*, int32_t) = List_Init;
void (*is_ListStatic_Init)(List*, int32_t, ListNode*, void*) = ListStatic_Init;
ListNode* (*is_List_Iter)(const List*) = List_Iter;
ListNode* (*is_List_Append)(List*, const void*, uint32_t) = List_Append;
ListNode* (*is_List_Prepend)(List*, const void*, uint32_t) = List_Prepend;
ListNode* (*is_List_InsertBefore)(List*, ListNode*, const void*, uint32_t) = List_InsertBefore;
ListNode* (*is_List_InsertAfter)(List*, ListNode*, const void*, uint32_t) = List_InsertAfter;
ListNode* (*is_List_Erase)(List*, ListNode*) = List_Erase;
void (*is_List_Clear)(List*) = List_Clear;

/* matrix.h */
void (*is_mCopy)(const float*, float*) = mCopy;
void (*is_mmMul)(const float*, const float*, float*) = mmMul;
void (*is_mvMul)(const float*, const float*, float*) = mvMul;
void (*is_mTrans)(const float*, float*) = mTrans;
void (*is_vvAdd)(const float*, const float*, float*) = vvAdd;
void (*is_vvSub)(const float*, const float*, float*) = vvSub;
uint32_t (*is_IP_Alg_Covar_2x2)(const uint16_t*, int32_t, float*) = IP_Alg_Covar_2x2;
uint32_t (*is_IP_Alg_Eigen_2x2)(const float*, float*, float*) = IP_Alg_Eigen_2x2;

/* geometry.h */
int32_t (*is_IP_Geom_Orientation)(int32_t, int32_t, int32_t, int32_t, int32_t, int32_t) = IP_Geom_Orientation;
int32_t (*is_IP_Geom_Orientation_f32)(const Point_f32*, const Point_f32*, const Point_f32*) = IP_Geom_Orientation_f32;
int32_t (*is_IP_Geom_ArePointsEqual_f32)(const Point_f32*, const Point_f32*) = IP_Geom_ArePointsEqual_f32;
int32_t (*is_IP_Geom_EdgesIntersect)(const Edge_s32*, const Edge_s32*) = IP_Geom_EdgesIntersect;
int32_t (*is_IP_Geom_EdgesIntersect_f32)(const Edge_f32*, const Edge_f32*) = IP_Geom_EdgesIntersect_f32;
int32_t (*is_IP_Geom_IsPointOnEdge_f32)(const Edge_f32*, const Point_f32*) = IP_Geom_IsPointOnEdge_f32;
int32_t (*is_IP_Geom_LinePoint2_SquaredDistance_s32)(const Line_s32*,
                                                     const Point_s32*) = IP_Geom_LinePoint2_SquaredDistance_s32;
float (*is_IP_Geom_LinePoint2_SquaredDistance_f32)(const Line_f32*,
                                                   const Point_f32*) = IP_Geom_LinePoint2_SquaredDistance_f32;
int32_t (*is_IP_Geom_EdgePoint2_SquaredDistance_s32)(const Edge_s32*,
                                                     const Point_s32*) = IP_Geom_EdgePoint2_SquaredDistance_s32;
float (*is_IP_Geom_EdgePoint2_SquaredDistance_f32)(const Edge_f32*,
                                                   const Point_f32*) = IP_Geom_EdgePoint2_SquaredDistance_f32;
int32_t (*is_IP_Geom_IntersectLines)(const Line_s32*, const Line_s32*, Point_s32*) = IP_Geom_IntersectLines;
int32_t (*is_IP_Geom_IntersectLines_f32)(const Line_f32*, const Line_f32*, Point_f32*) = IP_Geom_IntersectLines_f32;
int32_t (*is_IP_Geom_Barycentric)(const Point_s32*, const Point_s32*, float*) = IP_Geom_Barycentric;
int32_t (*is_IP_Geom_Intersects_s32)(const Rect_s32*, const Rect_s32*) = IP_Geom_Intersects_s32;
int32_t (*is_IP_Geom_Intersects_u32)(const Rect_u32*, const Rect_u32*) = IP_Geom_Intersects_u32;
void (*is_IP_Geom_SetUnion_s32)(const Rect_s32*, const Rect_s32*, Rect_s32*) = IP_Geom_SetUnion_s32;
void (*is_IP_Geom_SetUnion_u32)(const Rect_u32*, const Rect_u32*, Rect_u32*) = IP_Geom_SetUnion_u32;
void (*is_IP_Geom_SetIntersection_s32)(const Rect_s32*, const Rect_s32*, Rect_s32*) = IP_Geom_SetIntersection_s32;
void (*is_IP_Geom_RectGrow_s32)(Rect_s32*, int32_t, int32_t) = IP_Geom_RectGrow_s32;
int32_t (*is_IP_Polygon_IsSimple)(const Polygon_s32*) = IP_Polygon_IsSimple;
int32_t (*is_IP_Polygon_IsSimple_f32)(const Polygon_f32*) = IP_Polygon_IsSimple_f32;
int32_t (*is_IP_Polygon_IsInsideContour)(const Polygon_s32*, const Point_s32*, uint32_t) = IP_Polygon_IsInsideContour;
int32_t (*is_IP_Polygon_IsInside)(const Polygon_s32*, const Point_s32*) = IP_Polygon_IsInside;
int32_t (*is_IP_Polygon_IsInside_f32)(const Polygon_f32*, const Point_f32*) = IP_Polygon_IsInside_f32;
void (*is_IP_Polygon_Erase)(Polygon_s32*, uint32_t) = IP_Polygon_Erase;
void (*is_IP_Polygon_Erase_f32)(Polygon_f32*, uint32_t) = IP_Polygon_Erase_f32;
void (*is_IP_Polygon_RemoveCollinearPoints)(Polygon_s32*) = IP_Polygon_RemoveCollinearPoints;
void (*is_IP_Polygon_RemoveCollinearPoints_f32)(Polygon_f32*) = IP_Polygon_RemoveCollinearPoints_f32;
int32_t (*is_IP_Polyline_Orientation)(const Polygon_s32*, const Point_s32*) = IP_Polyline_Orientation;
int32_t (*is_IP_Polyline_Orientation_f32)(const Polygon_f32*, const Point_f32*) = IP_Polyline_Orientation_f32;
float (*is_IP_Polygon_SquaredDist)(const Polygon_f32*, const Point_f32*) = IP_Polygon_SquaredDist;
void (*is_IP_Utils_Bresenham)(const Point_s32*, const Point_s32*, int32_t, BresenhamCallback) = IP_Utils_Bresenham;

/* camera.h */
void (*is_ip_params2internalCalib)(const IntCalibParams*, IntCalib*) = ip_params2internalCalib;
uint32_t (*is_ip_orientation2externalCalib)(const Orientation*, ExtCalib*) = ip_orientation2externalCalib;
uint32_t (*is_ip_world2cam)(const Point3_f32*, Point3_f32*, const ExtCalib*) = ip_world2cam;
uint32_t (*is_ip_cam2world)(const Point3_f32*, Point3_f32*, const ExtCalib*) = ip_cam2world;
uint32_t (*is_ip_world2custom)(const Point3_f32*, Point3_f32*, const ExtCalib*) = ip_world2custom;
uint32_t (*is_ip_cam2img)(const Point3_f32*, Point_f32*, const IntCalib*) = ip_cam2img;
uint32_t (*is_ip_img2cam)(const Point_f32*, Point3_f32*, const IntCalib*, float) = ip_img2cam;
uint32_t (*is_ip_img2world)(const Point_f32*, Point3_f32*, const ExtCalib*, const IntCalib*, float) = ip_img2world;
uint32_t (*is_ip_world2img)(const Point3_f32*, Point_f32*, const ExtCalib*, const IntCalib*) = ip_world2img;
uint32_t (*is_ip_disp2cam)(const Point_f32*, Point3_f32*, const IntCalib*, float) = ip_disp2cam;
uint32_t (*is_ip_disp2world)(const Point_f32*, Point3_f32*, const ExtCalib*, const IntCalib*, float) = ip_disp2world;
uint32_t (*is_ip_params2extCalibCustom)(const IntCalibParams*, const Orientation*, const CustomFrameParams*,
                                        ExtCalib*) = ip_params2extCalibCustom;
uint32_t (*is_ip_stereo_init)(StereoCtx*, const IntCalibParams*, const Orientation*,
                              const ElevMapParams*) = ip_stereo_init;
void (*is_ip_calcMapRectLowerLeft)(const ExtCalib*, const IntCalib*, const ElevMapParams*, Point_f32*,
                                   float) = ip_calcMapRectLowerLeft;
uint32_t (*is_ip_world2elev)(const Point_f32*, Point_f32*, const ElevMapParams*, const Point_f32*) = ip_world2elev;
uint32_t (*is_ip_elev2world)(const Point_f32*, Point_f32*, const ElevMapParams*, const Point_f32*) = ip_elev2world;
uint32_t (*is_ip_stereo_world2cam)(const StereoCtx*, const Point3_f32*, Point3_f32*) = ip_stereo_world2cam;
uint32_t (*is_ip_stereo_cam2world)(const StereoCtx*, const Point3_f32*, Point3_f32*) = ip_stereo_cam2world;
uint32_t (*is_ip_stereo_cam2img)(const StereoCtx*, const Point3_f32*, Point_f32*) = ip_stereo_cam2img;
uint32_t (*is_ip_stereo_world2img)(const StereoCtx*, const Point3_f32*, Point_f32*) = ip_stereo_world2img;
uint32_t (*is_ip_stereo_img2cam)(const StereoCtx*, const Point_f32*, Point3_f32*, float) = ip_stereo_img2cam;
uint32_t (*is_ip_stereo_img2world)(const StereoCtx*, const Point_f32*, Point3_f32*, float) = ip_stereo_img2world;
uint32_t (*is_ip_stereo_disp2world)(const StereoCtx*, const Point_f32*, Point3_f32*, float) = ip_stereo_disp2world;
uint32_t (*is_ip_stereo_world2elev)(const StereoCtx*, const Point3_f32*, Point_f32*) = ip_stereo_world2elev;
uint32_t (*is_ip_stereo_elev2world)(const StereoCtx*, const Point_f32*, Point3_f32*, float) = ip_stereo_elev2world;
uint32_t (*is_ip_stereo_img2elev)(const StereoCtx*, const Point_f32*, Point_f32*, float) = ip_stereo_img2elev;
uint32_t (*is_ip_stereo_elev2img)(const StereoCtx*, const Point_f32*, Point_f32*, float) = ip_stereo_elev2img;
uint32_t (*is_ip_orientation2trafo)(const Orientation*, ExtCalibFixed*) = ip_orientation2trafo;
uint32_t (*is_ip_createTrafoParams)(const Orientation*, const IntCalibParams*, TrafoParams*) = ip_createTrafoParams;
uint32_t (*is_ip_trafoParams2calib)(const TrafoParams*, ExtCalib*, IntCalib*) = ip_trafoParams2calib;
void (*is_ip_world2cam_s32)(Point3_s32*, const Point3_s32*, const TrafoParams*) = ip_world2cam_s32;
void (*is_ip_world2img_s32)(Point_s32*, const Point3_s32*, const TrafoParams*) = ip_world2img_s32;
void (*is_ip_img2groundplane_s32)(Point3_s32*, const Point_s32*, int32_t, const TrafoParams*) = ip_img2groundplane_s32;
uint32_t (*is_ip_img2world_f32)(Point3_f32*, const Point_f32*, const TrafoParams*, float) = ip_img2world_f32;
uint32_t (*is_ip_calcMapRect_s32)(Point3_s32*, int32_t, int32_t, const TrafoParams*) = ip_calcMapRect_s32;
int32_t (*is_ip_millimeter2CalibCoord_s32)(int32_t) = ip_millimeter2CalibCoord_s32;
int32_t (*is_ip_calibCoord2Millimeter_s32)(int32_t) = ip_calibCoord2Millimeter_s32;
int32_t (*is_ip_gridCoord2Coord_s32)(int32_t, int32_t, uint32_t) = ip_gridCoord2Coord_s32;
int32_t (*is_ip_coord2GridCoord_s32)(int32_t, int32_t, uint32_t) = ip_coord2GridCoord_s32;
int32_t (*is_IP_Utils_CreateElevMaskFromImgPoly)(const Polygon_s32*, const StereoCtx*, const ImgC*,
                                                 Img*) = IP_Utils_CreateElevMaskFromImgPoly;

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
size_t (*is_nadir_sgm_bytes)(uint32_t) = nadir_sgm_bytes;
int32_t (*is_nadir_sgm_full)(const uint32_t*, const uint32_t*, const uint16_t*, uint32_t, uint32_t, const SgmParams*,
                             uint16_t*, SgmDebugData*, void*, size_t) = nadir_sgm_full;
size_t (*is_nadir_sgm_postproc_bytes)(uint16_t, uint16_t) = nadir_sgm_postproc_bytes;
uint32_t (*is_nadir_sgm_postproc)(const uint16_t*, const uint8_t*, uint16_t*, uint16_t, uint16_t, void*,
                                  size_t) = nadir_sgm_postproc;
void (*is_IP_Sgm)(const uint32_t*, const uint32_t*, const uint16_t*, uint32_t, uint32_t, uint8_t*,
                  SgmDebugData*) = IP_Sgm;
int32_t (*is_IP_SgmMakeDebugData)(uint32_t, uint32_t, uint32_t, SgmDebugData*) = IP_SgmMakeDebugData;
void (*is_IP_SgmFreeDebugData)(SgmDebugData*) = IP_SgmFreeDebugData;
uint32_t (*is_IP_SgmPostproc)(const uint16_t*, const uint8_t*, uint16_t*, uint32_t, uint32_t) = IP_SgmPostproc;

/* numeric.h */
uint32_t (*is_IP_Utl_Median_u16)(uint16_t*, uint32_t, uint16_t*) = IP_Utl_Median_u16;
uint32_t (*is_IP_Utl_RadixIdxSort)(const uint16_t*, uint16_t*, uint32_t, uint32_t) = IP_Utl_RadixIdxSort;
void (*is_IP_Kalman1d_Create)(Kalman1d*, float, float, float, float, float) = IP_Kalman1d_Create;
void (*is_IP_Kalman1d_Predict)(Kalman1d*, float) = IP_Kalman1d_Predict;
void (*is_IP_Kalman1d_Update)(Kalman1d*, float) = IP_Kalman1d_Update;
void (*is_IP_Optim_GsSearch)(const GsFunc*, uint32_t, double*, double*, GsResult*, double, double,
                             double) = IP_Optim_GsSearch;
double (*is_IP_Utils_GetTimeMS)(void) = IP_Utils_GetTimeMS;
double (*is_IP_Utils_GetTimeS)(void) = IP_Utils_GetTimeS;
int32_t (*is_IP_Utils_PrintNumAsAscii)(uint32_t) = IP_Utils_PrintNumAsAscii;

/* segment.h */
int32_t (*is_IP_CompFind_CreateLabelMap)(Img*, void*, uint32_t) = IP_CompFind_CreateLabelMap;
int32_t (*is_IP_CompFind_CreateComponentSizes)(Vector*, void*, uint32_t) = IP_CompFind_CreateComponentSizes;
int32_t (*is_IP_CompFind_Process)(const Img*, Img*, Vector*, const int32_t*) = IP_CompFind_Process;
CompFinder* (*is_IP_CompFinder_Init)(void) = IP_CompFinder_Init;
void (*is_IP_CompFinder_Close)(CompFinder*) = IP_CompFinder_Close;
int32_t (*is_IP_CompFinder_Process)(CompFinder*, const Img*, ComponentList*) = IP_CompFinder_Process;
int32_t (*is_IP_CompFinder_ProcessAoi)(CompFinder*, const Img*, const Rect_s32*,
                                       ComponentList*) = IP_CompFinder_ProcessAoi;
int32_t (*is_IP_ContourFilter)(const Img*, Img*, uint32_t) = IP_ContourFilter;
int32_t (*is_IP_ContourFilter_I)(Img*, uint32_t) = IP_ContourFilter_I;
int32_t (*is_IP_RGrow_Process)(const Img*, const int32_t*, Img*) = IP_RGrow_Process;
int32_t (*is_IP_RGE_Init)(void) = IP_RGE_Init;
int32_t (*is_IP_RGE_Process)(const ImgC*, const RgeParams*) = IP_RGE_Process;
int32_t (*is_IP_RGE_CreateLabelMap)(Img*) = IP_RGE_CreateLabelMap;
int32_t (*is_IP_RGE_CreateRegionList)(RegionList*) = IP_RGE_CreateRegionList;
size_t (*is_nadir_region_growing_bytes)(uint32_t, uint32_t) = nadir_region_growing_bytes;
int32_t (*is_nadir_region_growing)(const Img*, const int32_t*, Img*, void*, size_t) = nadir_region_growing;
size_t (*is_nadir_elevation_regions_bytes)(void) = nadir_elevation_regions_bytes;
NadirElevationRegions* (*is_nadir_elevation_regions_init)(void*, size_t) = nadir_elevation_regions_init;
int32_t (*is_nadir_elevation_regions_process)(NadirElevationRegions*, const ImgC*,
                                              const RgeParams*) = nadir_elevation_regions_process;
int32_t (*is_nadir_elevation_regions_label_map)(const NadirElevationRegions*, Img*) = nadir_elevation_regions_label_map;
int32_t (*is_nadir_elevation_regions_list)(const NadirElevationRegions*, RegionList*) = nadir_elevation_regions_list;

/* vector.h */
uint32_t (*is_Vector_Init)(Vector*, uint32_t, void*, uint32_t) = Vector_Init;
uint32_t (*is_Vector_Clear)(Vector*) = Vector_Clear;
uint32_t (*is_Vector_Fill)(Vector*, uint32_t, int32_t) = Vector_Fill;

int main(void) { return 0; }
