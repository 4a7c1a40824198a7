// MARK: One
//MARK:Two
// MARK: - Three
// MARK: -Four
/// MARK: Five
/* MARK: Six */
// MARK - none
// Mark: Seven
