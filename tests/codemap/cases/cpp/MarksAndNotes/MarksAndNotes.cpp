// MARK: - Sea
#pragma mark Shore
int a; // TODO: more
#warning "soon"
