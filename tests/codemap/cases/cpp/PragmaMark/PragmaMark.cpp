#pragma mark - Life
void rise() {}
#pragma mark Death
void ebb() {}
