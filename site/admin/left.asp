<%@ Component="Ostrakan.Class64" %><% Admin_Session = Setting("Admin_Session") %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="menu">
<dl>
  <dt>视频数据</dt>
  <dd><a href="db_list.asp" target="main">数据列表</a></dd>
  <dd><a href="db_add.asp" target="main">添加数据</a></dd>
  <dd><a href="db_search.asp" target="main">数据搜索</a></dd>
  <dd><a href="db_manage.asp" target="main">数据维护</a></dd>
  <!-- Categories and generation -->
  <dt>分类管理</dt>
  <dd><a href="sort_manage.asp" target="main">分类管理</a></dd>
  <dd><a href="sort_batch_add.asp" target="main">批量添加一级分类</a></dd>
  <dt>生成HTML</dt>
  <dd><a href="create_all.asp" target="main">生成全站</a></dd>
  <dd><a href="create_sort.asp" target="main">生成分类页面</a></dd>
  <dt>列表采集</dt>
  <dd><a href="gather_list_web_manage.asp" target="main">采集网站管理</a></dd>
  <dd><a href="gather_list_web_add.asp" target="main">添加采集网站</a></dd>
  <dt>编号采集</dt>
  <dd><a href="gather_id_web_manage.asp" target="main">编号采集网站</a></dd>
  <dd><a href="gather_id_web_add.asp" target="main">添加编号采集网站</a></dd>
  <dt>自动采集</dt>
  <dd><a href="gather_schedule.asp" target="main">定时采集</a></dd>
  <dd><a href="gather_run_list.asp" target="main">采集记录</a></dd>
  <dt>搜索关键词</dt>
  <dd><a href="keyword_manage.asp" target="main">关键词管理</a></dd>
  <dt>系统管理</dt>
  <dd><a href="desktop.asp" target="main">管理首页</a></dd>
  <dd><a href="admin.asp" target="main">帐号设置</a></dd>
  <dd><a href="login_out.asp" target="_top">退出登录</a></dd>
</dl>
</body>
</html>
