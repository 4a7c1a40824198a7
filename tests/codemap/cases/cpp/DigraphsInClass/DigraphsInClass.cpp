struct A <% int a<:2:>; %>;
