<%@ Component="Ostrakan.Class49" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %>
