char quote = '\'', brace = '{', many = 'ab{}';
int after;
