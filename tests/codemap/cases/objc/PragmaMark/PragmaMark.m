#pragma mark - Life cycle
#pragma mark View
#pragma mark -
#pragma once
int shown;
