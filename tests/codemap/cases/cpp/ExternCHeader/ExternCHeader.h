#ifdef __cplusplus
extern "C" {
#endif
int tide(void);
#ifdef __cplusplus
}
#endif
int after(void);
