#ifdef __cplusplus
extern "C" {
#endif
int helper(void);
#ifdef __cplusplus
}
#endif
