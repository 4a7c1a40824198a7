class A <% int a<:3:>; %>;
std::vector<::A> list;
%:define LIMIT 3
int after;
