<%@ Component="Ostrakan.Class37" Rule="gather_list_web_list.asp" %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>列表采集测试</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<div class="entries"><% InitFunction1 %></div>
<% InitFunction6 %><% InitFunction5 %>
<p class="hint">测试网站：<% InitFunction2 %>　关键字：<% InitFunction3 %>　规则编号：<% InitFunction4 %></p>
</body>
</html>
