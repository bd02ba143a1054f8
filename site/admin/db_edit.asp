<%@ Component="Ostrakan.Class61" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %>
