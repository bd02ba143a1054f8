<%@ Component="Ostrakan.Class170" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<% InitFunction4 %>
<title>采集记录</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>采集记录</h3>
<% InitFunction5 %>
<p class="hint">排队的采集任务由 ostrakan worker 执行；定时采集见“定时采集”。采集进行中时本页每 5 秒刷新一次。</p>
</body>
</html>
