<%@ Component="Ostrakan.Class171" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>定时采集</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>定时采集</h3>
<% InitFunction4 %>
<% InitFunction5 %>
<p class="hint">新添加的定时采集立即到期，之后按间隔或定时到期；到期的采集任务由 ostrakan worker 排队并执行，见“采集记录”。</p>
</body>
</html>
